`set pathstate` and `set phypathnormal` on the default topology: the
checks before anything is sent, the requests, the texts and the
operation-log lines.

  $ . "$TESTDIR/lib.sh"
  $ printf 0 > "$CVADM_ROOT/opt/Corvane/log/serial_oper"
  $ reqs="$CVADM_ROOT/sim/requests.log"

The path requests since the log was emptied (see pathset.sh):

  $ . "$TESTDIR/pathset.sh"
  $ state() { cv show path id=$1 | grep -E '^(Path State|Check State)'; }

Argument refusals send nothing and write no log line:

  $ : > "$reqs"
  $ refusals <<'EOF'
  > set pathstate=enable
  > set pathstate=on path_id=1
  > set pathstate= path_id=1
  > set pathstate=enable path_id=
  > set pathstate=enable path_id=1,2
  > set pathstate=enable path_id=abc
  > set pathstate=enable array_id=1
  > set pathstate=enable path_id=1 path_id=1
  > set phypathnormal
  > set phypathnormal path_id=1,2
  > set phypathnormal path_id=x
  > set phypathnormal id=1
  > set phypathnormal path_id=1 path_id=1
  > EOF
  [1] set pathstate=enable: Error: Invalid input! | Usage: |            -- set pathstate={enable|disable} path_id=<ID>
  [1] set pathstate=on path_id=1: Error: Invalid input! | Usage: |            -- set pathstate={enable|disable} path_id=<ID>
  [1] set pathstate= path_id=1: Error: Invalid input! | Usage: |            -- set pathstate={enable|disable} path_id=<ID>
  [1] set pathstate=enable path_id=: Error: Invalid input! | Usage: |            -- set pathstate={enable|disable} path_id=<ID>
  [1] set pathstate=enable path_id=1,2: Error: You can't input more than 1 ids | Error: Invalid input! | Usage: |            -- set pathstate={enable|disable} path_id=<ID>
  [1] set pathstate=enable path_id=abc: Error: Invalid input --- abc | Error: Invalid input! | Usage: |            -- set pathstate={enable|disable} path_id=<ID>
  [1] set pathstate=enable array_id=1: Error: Invalid input --- array_id! | Error: Invalid input! | Usage: |            -- set pathstate={enable|disable} path_id=<ID>
  [1] set pathstate=enable path_id=1 path_id=1: Error: Invalid input! | Usage: |            -- set pathstate={enable|disable} path_id=<ID>
  [1] set phypathnormal: Error: Invalid input! | Usage: |            -- set phypathnormal path_id=<ID>
  [1] set phypathnormal path_id=1,2: Error: You can't input more than 1 ids | Error: Invalid input! | Usage: |            -- set phypathnormal path_id=<ID>
  [1] set phypathnormal path_id=x: Error: Invalid input --- x | Error: Invalid input! | Usage: |            -- set phypathnormal path_id=<ID>
  [1] set phypathnormal id=1: Error: Invalid input --- id! | Error: Invalid input! | Usage: |            -- set phypathnormal path_id=<ID>
  [1] set phypathnormal path_id=1 path_id=1: Error: Invalid input! | Usage: |            -- set phypathnormal path_id=<ID>
  $ wc -c < "$reqs"; test -e "$CVADM_ROOT/opt/Corvane/log/oper_log" || echo no log
  0
  no log

The five checks of `set pathstate`, in their order, one case each; each
refusal sends no common set request and logs the outcome 0. A missing path
(1); an iSCSI path, both directions (2); path 15's array 3 has no disk:
disabling is refused (3), enabling a path without LUNs is let through to
the array's capability bytes, which array 3 does not have (4); path 14's
controller is disabled (5).

  $ refusals <<'EOF'
  > set pathstate=enable path_id=99
  > set pathstate=enable path_id=10
  > set pathstate=disable path_id=10
  > set pathstate=disable path_id=15
  > set pathstate=enable path_id=15
  > set pathstate=enable path_id=14
  > EOF
  [1] set pathstate=enable path_id=99: The path whose ID is 99 does not exist.
  [1] set pathstate=enable path_id=10: Enabling an iSCSI path is not supported.
  [1] set pathstate=disable path_id=10: Disabling an iSCSI path is not supported.
  [1] set pathstate=disable path_id=15: The disk array whose ID is 3 does not exist.
  [1] set pathstate=enable path_id=15: The disk array of this version does not support this function.
  [1] set pathstate=enable path_id=14: The path cannot be enabled since the controller is in the disabled state.
  $ sent; operlog
  [1] [CLI] [1] [1396789514] [set pathstate=enable path_id=99] [Enable physical path(path id = 99)] [0]
  [2] [CLI] [1] [1396789514] [set pathstate=enable path_id=10] [Enable physical path(path id = 10)] [0]
  [3] [CLI] [2] [1396789515] [set pathstate=disable path_id=10] [Disable physical path(path id = 10)] [0]
  [4] [CLI] [2] [1396789515] [set pathstate=disable path_id=15] [Disable physical path(path id = 15)] [0]
  [5] [CLI] [1] [1396789514] [set pathstate=enable path_id=15] [Enable physical path(path id = 15)] [0]
  [6] [CLI] [1] [1396789514] [set pathstate=enable path_id=14] [Enable physical path(path id = 14)] [0]

Disabling the only path of VLUN 5's disk is refused by the driver (1029):

  $ cv set pathstate=disable path_id=7; echo "[$?]"; sent
  Disable path {7} failed.
  Please ensure that it has an available backup path to keep the continuity of application.
  [1]
  sub=26 result=1029 word=1029 path=7 at16=0 at40=0 size=608

A disable that succeeds, shown by the next `show path`, then enabled
again:

  $ cv set pathstate=disable path_id=1; echo "[$?]"; sent; state 1
  Succeeded in executing the command.
  After a host is restarted, the path that is disabled can be automatically enabled. Otherwise, you need to manually enable the path.
  [0]
  sub=26 result=1024 word=0 path=1 at16=0 at40=0 size=608
  Path State      :  Disable
  Check State     :  --
  $ cv set pathstate=enable path_id=1; echo "[$?]"; sent; state 1
  Succeeded in executing the command.
  [0]
  sub=26 result=1024 word=0 path=1 at16=0 at40=1 size=608
  Path State      :  Normal
  Check State     :  --
  $ operlog | tail -n 3
  [7] [CLI] [2] [1396789515] [set pathstate=disable path_id=7] [Disable physical path(path id = 7)] [0]
  [8] [CLI] [2] [1396789515] [set pathstate=disable path_id=1] [Disable physical path(path id = 1)] [1]
  [9] [CLI] [1] [1396789514] [set pathstate=enable path_id=1] [Enable physical path(path id = 1)] [1]

`set phypathnormal`: the refusals (missing, "Fault", "Disable") come before
the prompt and send nothing:

  $ refusals <<'EOF'
  > set phypathnormal path_id=99
  > set phypathnormal path_id=9
  > set phypathnormal path_id=3
  > EOF
  [1] set phypathnormal path_id=99: The path whose ID is 99 does not exist.
  [1] set phypathnormal path_id=9: The state of the path 9 is fault and cannot be set to normal.
  [1] set phypathnormal path_id=3: The state of the path 3 is disable and cannot be set to normal.
  $ sent; operlog | tail -n 3
  [10] [CLI] [1] [1396789523] [set phypathnormal path_id=99] [Set physical path(id = 99)iostate to normal] [0]
  [11] [CLI] [1] [1396789523] [set phypathnormal path_id=9] [Set physical path(id = 9)iostate to normal] [0]
  [12] [CLI] [1] [1396789523] [set phypathnormal path_id=3] [Set physical path(id = 3)iostate to normal] [0]

Declined, nothing is sent and the command succeeds; confirmed, sub-command
24 carries the path at 8 and the normal state 19 at 16, and the timeout
degraded path 2 reads "Normal":

  $ echo n | cv set phypathnormal path_id=2; echo "[$?]"; sent
  
  Please check whether the fault has been rectified. If the fault persists and you forcibly recover the path, the performance may be decreased. 
  Are you sure you want to continue? [y,n]: 
  [0]
  $ echo y | cv set phypathnormal path_id=2; echo "[$?]"; sent; state 2
  
  Please check whether the fault has been rectified. If the fault persists and you forcibly recover the path, the performance may be decreased. 
  Are you sure you want to continue? [y,n]: 
  Succeeded in executing the command.
  [0]
  sub=24 result=1024 word=0 path=2 at16=19 at40=0 size=608
  Path State      :  Normal
  Check State     :  Checking
  $ operlog | tail -n 1
  [13] [CLI] [1] [1396789523] [set phypathnormal path_id=2] [Set physical path(id = 2)iostate to normal] [1]

A refusal with a code of no meaning to this command (injected here) goes
to the internal-error printer; the log says nothing changed:

  $ echo '50 code=1031 1' > "$CVADM_ROOT/sim/faults"
  $ echo y | cv set phypathnormal path_id=2; echo "[$?]"; sent
  
  Please check whether the fault has been rectified. If the fault persists and you forcibly recover the path, the performance may be decreased. 
  Are you sure you want to continue? [y,n]: 
  Failed to execute the command due to internal errors.
  [1]
  sub=24 result=1031 word=1031 path=2 at16=19 at40=0 size=608
  $ operlog | tail -n 1
  [14] [CLI] [1] [1396789523] [set phypathnormal path_id=2] [Set physical path(id = 2)iostate to normal] [0]

