The driver's refusals of the path commands, each injected through the
simulated driver (the code in the frame and in the result word at 4, as
the driver gives its own), and the controller check of `set pathstate`.

  $ . "$TESTDIR/lib.sh"
  $ printf 0 > "$CVADM_ROOT/opt/Corvane/log/serial_oper"
  $ . "$TESTDIR/pathset.sh"
  $ faults() { printf '%s\n' "$@" > "$CVADM_ROOT/sim/faults"; }
  $ : > "$CVADM_ROOT/sim/requests.log"

`set pathstate`: 1029 on a disable names the backup path; a plain failure
(the request fails) or another code says only that the change failed; none
changes the path:

  $ faults '50 code=1029 1'
  $ cv set pathstate=disable path_id=0; echo "[$?]"; sent
  Disable path {0} failed.
  Please ensure that it has an available backup path to keep the continuity of application.
  [1]
  sub=26 result=1029 word=1029 path=0 at16=0 at40=0 size=608
  $ faults '50 refuse 1'
  $ cv set pathstate=disable path_id=0; echo "[$?]"; sent
  Disable path {0} failed.
  [1]
  sub=26 result=4294967295 word=0 path=0 at16=0 at40=0 size=608
  $ faults '50 code=1031 1'
  $ cv set pathstate=enable path_id=0; echo "[$?]"; sent
  Enable path {0} failed.
  [1]
  sub=26 result=1031 word=1031 path=0 at16=0 at40=1 size=608
  $ cv show path id=0 | grep '^Path State'
  Path State      :  Normal
  $ operlog
  [1] [CLI] [2] [1396789515] [set pathstate=disable path_id=0] [Disable physical path(path id = 0)] [0]
  [2] [CLI] [2] [1396789515] [set pathstate=disable path_id=0] [Disable physical path(path id = 0)] [0]
  [3] [CLI] [1] [1396789514] [set pathstate=enable path_id=0] [Enable physical path(path id = 0)] [0]
  $ : > "$CVADM_ROOT/sim/requests.log"

The controller check, when enabling only: the array's own reading asks for
its controllers first (answered empty here), the third query is the
check's; a controller the driver does not know refuses the enable before
anything is sent:

  $ faults '61 code=1024 2' '61 refuse 1'
  $ cv set pathstate=enable path_id=6; echo "[$?]"; sent
  The controller whose ID is 0 does not exist.
  [1]
  $ faults '61 code=1024 2' '61 refuse 1'
  $ cv set pathstate=disable path_id=6; echo "[$?]"; sent
  Succeeded in executing the command.
  After a host is restarted, the path that is disabled can be automatically enabled. Otherwise, you need to manually enable the path.
  [0]
  sub=26 result=1024 word=0 path=6 at16=0 at40=0 size=608
  $ cv set pathstate=enable path_id=6; echo "[$?]"; sent
  Succeeded in executing the command.
  [0]
  sub=26 result=1024 word=0 path=6 at16=0 at40=1 size=608
  $ operlog | tail -n 3
  [4] [CLI] [1] [1396789514] [set pathstate=enable path_id=6] [Enable physical path(path id = 6)] [0]
  [5] [CLI] [2] [1396789515] [set pathstate=disable path_id=6] [Disable physical path(path id = 6)] [1]
  [6] [CLI] [1] [1396789514] [set pathstate=enable path_id=6] [Enable physical path(path id = 6)] [1]

`set phypathnormal`: 1047 (the driver keeps a disabled path) is an answer
without a line end, and the command succeeds while its log line says
nothing changed; a plain failure goes to the internal-error printer:

  $ faults '50 code=1047 1'
  $ echo y | cv set phypathnormal path_id=2; echo "[$?]"; sent
  
  Please check whether the fault has been rectified. If the fault persists and you forcibly recover the path, the performance may be decreased. 
  Are you sure you want to continue? [y,n]: 
  A disabled path cannot be recovered by this command. Please run the set pathstate command to clear the status of the path first.[0]
  sub=24 result=1047 word=1047 path=2 at16=19 at40=0 size=608
  $ faults '50 refuse 1'
  $ echo y | cv set phypathnormal path_id=2; echo "[$?]"; sent
  
  Please check whether the fault has been rectified. If the fault persists and you forcibly recover the path, the performance may be decreased. 
  Are you sure you want to continue? [y,n]: 
  Failed to execute the command due to internal errors.
  [1]
  sub=24 result=4294967295 word=0 path=2 at16=19 at40=0 size=608
  $ cv show path id=2 | grep '^Path State'
  Path State      :  I/O timeout degradation
  $ operlog | tail -n 2
  [7] [CLI] [1] [1396789523] [set phypathnormal path_id=2] [Set physical path(id = 2)iostate to normal] [0]
  [8] [CLI] [1] [1396789523] [set phypathnormal path_id=2] [Set physical path(id = 2)iostate to normal] [0]

`clear obsolete_path` on path 9 (down): 1059, 1060, any other code and a
plain failure each get their text, and the path stays:

  $ for f in 1059 1060 1065; do faults "50 code=$f 1"; cv clear obsolete_path path_id=9; echo "[$?]"; done; sent
  Logic Path is exist, Please delete it before you do this command.
  [1]
  Physic path is not fault, can't execute this command.
  [1]
  Failed to execute the command due to internal errors.
  [1]
  sub=50 result=1059 word=1059 path=9 at16=0 at40=0 size=608
  sub=50 result=1060 word=1060 path=9 at16=0 at40=0 size=608
  sub=50 result=1065 word=1065 path=9 at16=0 at40=0 size=608
  $ faults '50 refuse 1'
  $ cv clear obsolete_path path_id=9; echo "[$?]"; sent
  Failed to execute the command due to internal errors.
  [1]
  sub=50 result=4294967295 word=0 path=9 at16=0 at40=0 size=608
  $ cv show path id=9 | grep -c 'Path#9'
  1
  $ operlog | tail -n 4
  [9] [CLI] [1] [1396789562] [clear obsolete_path path_id=9] [Clear obsolete path(path id = 9)] [0]
  [10] [CLI] [1] [1396789562] [clear obsolete_path path_id=9] [Clear obsolete path(path id = 9)] [0]
  [11] [CLI] [1] [1396789562] [clear obsolete_path path_id=9] [Clear obsolete path(path id = 9)] [0]
  [12] [CLI] [1] [1396789562] [clear obsolete_path path_id=9] [Clear obsolete path(path id = 9)] [0]
