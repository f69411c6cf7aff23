A driver whose array count cannot be trusted: `show path` over every array
says it found no path rather than list a clamped answer.

  $ . "$TESTDIR/lib.sh"

An honest count lists the paths.

  $ cv show path > plain.txt; echo $?
  0
  $ grep -c 'Path ID' plain.txt
  5

No array at all, and more arrays than the driver may have: the same line.

  $ echo '11 count=0 1' > root/sim/faults
  $ cv show path; echo $?
  Can't find any path.
  0
  $ echo '11 count=129 1' > root/sim/faults
  $ cv show path; echo $?
  Can't find any path.
  0

The most the driver may have is still listed.

  $ echo '11 count=128 1' > root/sim/faults
  $ cv show path > claimed.txt; echo $?
  0
  $ diff plain.txt claimed.txt && echo same
  same
