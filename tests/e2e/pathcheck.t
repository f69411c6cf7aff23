`start pathcheck`, `clear obsolete_path` and `clear path_statistic` on the
incident topology (the default one with path 16 down and reliability
counters).

  $ export CVSIM_TOPOLOGY="$TESTDIR/../../sim/topology/incident.json"
  $ . "$TESTDIR/lib.sh"
  $ printf 0 > "$CVADM_ROOT/opt/Corvane/log/serial_oper"
  $ reqs="$CVADM_ROOT/sim/requests.log"

The path requests since the log was emptied (see pathset.sh):

  $ . "$TESTDIR/pathset.sh"

Argument refusals send nothing and write no log line: nine IDs where eight
are allowed, non-numbers, empty lists, other keys, repeated keys.

  $ : > "$reqs"
  $ refusals <<'EOF'
  > start pathcheck
  > start pathcheck path_id=
  > start pathcheck path_id=1,2,3,4,5,6,7,8,9
  > start pathcheck path_id=1,a
  > start pathcheck array_id=1
  > start pathcheck path_id=1 path_id=2
  > clear obsolete_path
  > clear obsolete_path path_id=1,2
  > clear obsolete_path path_id=-1
  > clear obsolete_path path_id=1 path_id=1
  > clear path_statistic vlun_id=1
  > clear path_statistic path_id=
  > clear path_statistic path_id=1,2,3,4,5,6,7,8,9
  > clear path_statistic array_id=x
  > clear path_statistic path_id=1 path_id=1
  > clear path_statistic path_id=1 array_id=1
  > EOF
  [1] start pathcheck: Error: Invalid input! | Usage: |            -- start pathcheck path_id=<ID1,ID2,...>
  [1] start pathcheck path_id=: Error: Invalid input! | Usage: |            -- start pathcheck path_id=<ID1,ID2,...>
  [1] start pathcheck path_id=1,2,3,4,5,6,7,8,9: Error: You can't input more than 8 ids | Error: Invalid input! | Usage: |            -- start pathcheck path_id=<ID1,ID2,...>
  [1] start pathcheck path_id=1,a: Error: Invalid input --- a | Error: Invalid input! | Usage: |            -- start pathcheck path_id=<ID1,ID2,...>
  [1] start pathcheck array_id=1: Error: Invalid input --- array_id! | Error: Invalid input! | Usage: |            -- start pathcheck path_id=<ID1,ID2,...>
  [1] start pathcheck path_id=1 path_id=2: Error: Invalid input! | Usage: |            -- start pathcheck path_id=<ID1,ID2,...>
  [1] clear obsolete_path: Error: Invalid input! | Usage: |            -- clear obsolete_path path_id=<ID>
  [1] clear obsolete_path path_id=1,2: Error: You can't input more than 1 ids | Error: Invalid input! | Usage: |            -- clear obsolete_path path_id=<ID>
  [1] clear obsolete_path path_id=-1: Error: Invalid input --- -1 | Error: Invalid input! | Usage: |            -- clear obsolete_path path_id=<ID>
  [1] clear obsolete_path path_id=1 path_id=1: Error: Invalid input! | Usage: |            -- clear obsolete_path path_id=<ID>
  [1] clear path_statistic vlun_id=1: Error: Invalid input! | Usage: |    -- clear path_statistic [path_id=<ID1,ID2,...>|array_id=<ID1,ID2,...>]
  [1] clear path_statistic path_id=: Error: Invalid input! | Usage: |    -- clear path_statistic [path_id=<ID1,ID2,...>|array_id=<ID1,ID2,...>]
  [1] clear path_statistic path_id=1,2,3,4,5,6,7,8,9: Error: You can't input more than 8 ids | Error: Invalid input! | Usage: |    -- clear path_statistic [path_id=<ID1,ID2,...>|array_id=<ID1,ID2,...>]
  [1] clear path_statistic array_id=x: Error: Invalid input --- x | Error: Invalid input! | Usage: |    -- clear path_statistic [path_id=<ID1,ID2,...>|array_id=<ID1,ID2,...>]
  [1] clear path_statistic path_id=1 path_id=1: Error: Invalid input! | Usage: |    -- clear path_statistic [path_id=<ID1,ID2,...>|array_id=<ID1,ID2,...>]
  [1] clear path_statistic path_id=1 array_id=1: Error: Invalid input! | Usage: |    -- clear path_statistic [path_id=<ID1,ID2,...>|array_id=<ID1,ID2,...>]
  $ wc -c < "$reqs"; test -e "$CVADM_ROOT/opt/Corvane/log/oper_log" || echo no log
  0
  no log

`start pathcheck`: declined, nothing is sent and the command succeeds:

  $ echo n | cv start pathcheck path_id=0; echo "[$?]"; sent
  
  The path check will last about 3 minutes and will consume some bandwidth resources. 
  Are you sure you want to continue? [y,n]: 
  [0]

Confirmed, every ID is tried in the order given: the busy path 7 (all its
working logical paths busy) carries 1 at 40, path 0 carries 0, path 99 does
not exist and is never sent; the summary says not all succeeded. Each path
tried has its log line:

  $ echo y | cv start pathcheck path_id=7,99,0; echo "[$?]"; sent
  
  The path check will last about 3 minutes and will consume some bandwidth resources. 
  Are you sure you want to continue? [y,n]: 
  Failed to start the phypath 99 health status check.
  Check path command send on some specific pathes unsuccessfully, use "show path"command to investigate the check result.
  [1]
  sub=28 result=1024 word=0 path=7 at16=0 at40=1 size=608
  sub=28 result=1024 word=0 path=0 at16=0 at40=0 size=608
  $ operlog
  [1] [CLI] [0] [1396789516] [start pathcheck path_id=7,99,0] [Send path(path id = 7)health check conmand] [1]
  [2] [CLI] [0] [1396789516] [start pathcheck path_id=7,99,0] [Send path(path id = 99)health check conmand] [0]
  [3] [CLI] [0] [1396789516] [start pathcheck path_id=7,99,0] [Send path(path id = 0)health check conmand] [1]
  $ cv show path id=0 | grep 'Check State'
  Check State     :  Checking

All sent:

  $ echo y | cv start pathcheck path_id=0; echo "[$?]"; sent
  
  The path check will last about 3 minutes and will consume some bandwidth resources. 
  Are you sure you want to continue? [y,n]: 
  Check path command send on all pathes successfully, use "show path"command to investigate the check result.
  [0]
  sub=28 result=1024 word=0 path=0 at16=0 at40=0 size=608
  $ cv show path id=0 | grep 'Check State'
  Check State     :  Succeed

`clear obsolete_path`: a missing path is never sent; the driver's result
word decides the text: 1060 for a working path, 1059 while disks run over
it, success for path 16 (down, no disks), which is then gone:

  $ for id in 99 0 9 16; do cv clear obsolete_path path_id=$id; echo "[$?]"; done; sent
  The path whose ID is 99 does not exist.
  [1]
  Physic path is not fault, can't execute this command.
  [1]
  Logic Path is exist, Please delete it before you do this command.
  [1]
  Succeeded in executing the command.
  [0]
  sub=50 result=1060 word=1060 path=0 at16=0 at40=0 size=608
  sub=50 result=1059 word=1059 path=9 at16=0 at40=0 size=608
  sub=50 result=1024 word=0 path=16 at16=0 at40=0 size=608
  $ cv show path id=16; operlog | tail -n 4
  The path whose ID is 16 does not exist.
  [5] [CLI] [1] [1396789562] [clear obsolete_path path_id=99] [Clear obsolete path(path id = 99)] [0]
  [6] [CLI] [1] [1396789562] [clear obsolete_path path_id=0] [Clear obsolete path(path id = 0)] [0]
  [7] [CLI] [1] [1396789562] [clear obsolete_path path_id=9] [Clear obsolete path(path id = 9)] [0]
  [8] [CLI] [1] [1396789562] [clear obsolete_path path_id=16] [Clear obsolete path(path id = 16)] [1]

`clear path_statistic`, each path tried with its own log line. Chosen
paths (99 does not exist and is not sent):

  $ cv clear path_statistic path_id=6,99; echo "[$?]"; sent; operlog | tail -n 2
  The path whose ID is 99 does not exist.
  Statistics of some specified paths cleared unsuccessfully.
  [1]
  clear statistic path=6 result=1024 size=1080
  [9] [CLI] [1] [1396789604] [clear path_statistic path_id=6,99] [Clear path statistic 6] [1]
  [10] [CLI] [1] [1396789604] [clear path_statistic path_id=6,99] [Clear path statistic 99] [0]
  $ cv clear path_statistic path_id=6; echo "[$?]"; sent
  Statistics of all specified paths cleared successfully.
  [0]
  clear statistic path=6 result=1024 size=1080

The paths of chosen arrays: 5 does not exist; every path of array 3 (one)
is cleared:

  $ cv clear path_statistic array_id=3,5; echo "[$?]"; sent; operlog | tail -n 1
  The disk array whose ID is 5 does not exist.
  Statistics of some specified arrays cleared unsuccessfully.
  [1]
  clear statistic path=15 result=1024 size=1080
  [12] [CLI] [1] [1396789604] [clear path_statistic array_id=3,5] [Clear path statistic 15] [1]
  $ cv clear path_statistic array_id=3; echo "[$?]"; sent
  Statistics of all specified arrays cleared successfully.
  [0]
  clear statistic path=15 result=1024 size=1080

Every path of every array:

  $ cv clear path_statistic; echo "[$?]"; sent | wc -l; operlog | grep -c 'path_statistic\]'
  Statistics of all paths cleared successfully.
  [0]
  18
  18

A statistics clearing that fails is reported for its path:

  $ echo '108 refuse 1' > "$CVADM_ROOT/sim/faults"
  $ cv clear path_statistic path_id=6,7; echo "[$?]"; sent; operlog | tail -n 2
  The path whose ID is 6 does not exist.
  Statistics of some specified paths cleared unsuccessfully.
  [1]
  clear statistic path=6 result=4294967295 size=1080
  clear statistic path=7 result=1024 size=1080
  [32] [CLI] [1] [1396789604] [clear path_statistic path_id=6,7] [Clear path statistic 6] [0]
  [33] [CLI] [1] [1396789604] [clear path_statistic path_id=6,7] [Clear path statistic 7] [1]
