A driver that answers more IDs than it wrote, or more than the request
has room for: every object is still shown once, and the listing is the one
an honest answer gives.

  $ . "$TESTDIR/lib.sh"

Two hundred arrays claimed, five written: the table of `show array` is the
same, and the trace says what was cut and what repeated.

  $ cv show array > plain.txt
  $ requests | grep -c '^nr=12 '
  5
  $ echo '11 count=200 1' > root/sim/faults
  $ : > root/sim/requests.log
  $ cv show array > claimed.txt
  $ diff plain.txt claimed.txt && echo same
  same
  $ tracelog | grep -o 'The driver answered .*array ids.*'
  The driver answered 200 array ids, more than the capacity 128; only 128 are read.
  The driver answered 128 array ids with 123 repeated; each is listed once.

Each array's record is still asked once.

  $ requests | grep -c '^nr=12 '
  5

The VLUN listing, with the first array's disk list claiming 20000 disks:
the same rows, from the same disk records, each read once.

  $ : > root/sim/requests.log
  $ cv show vlun type=all > plain.txt
  $ requests | grep -c '^nr=23 ' > plain-disks.txt
  $ printf '21 count=20000 1\n' > root/sim/faults
  $ : > root/sim/requests.log
  $ cv show vlun type=all > claimed.txt
  $ diff plain.txt claimed.txt && echo same
  same
  $ requests | grep -c '^nr=23 ' | diff plain-disks.txt - && echo same
  same
