Start-up guards: root, the device node, the upgrade lock.

  $ . "$TESTDIR/lib.sh"

  $ CVSIM_UID=1000 cv show version; echo "[$?]"
  please exit and run as root!
  [1]

  $ mv "$CVADM_ROOT/dev/cvdrv" "$CVADM_ROOT/dev/gone"
  $ cv show version; echo "[$?]"
  Unable to detect Corvane device node, exit
  [1]
  $ mv "$CVADM_ROOT/dev/gone" "$CVADM_ROOT/dev/cvdrv"

An upgrade holds the lock exclusively:

  $ flock -x "$CVADM_ROOT/opt/Corvane/cvadmin.lock" -c '"$CVADM_SIM" show version; echo "[$?]"'
  The non-disruptive upgrade is running, exit
  [1]
  $ cv show version; echo "[$?]"
  Software Version   : 21.01.025
  Driver   Version   : 21.01.030
  [0]

A lock file that cannot be opened:

  $ rm "$CVADM_ROOT/opt/Corvane/cvadmin.lock"
  $ mkdir "$CVADM_ROOT/opt/Corvane/cvadmin.lock"
  $ cv show version; echo "[$?]"
  exec cvadmin failed due to internal error, exit
  [1]
  $ rmdir "$CVADM_ROOT/opt/Corvane/cvadmin.lock"

Everything went beneath the sandbox; nothing reached the host's paths:

  $ (cd "$CVADM_ROOT" && find opt -type f | sort)
  opt/Corvane/log/cli_uil_log.txt
  $ ls /opt/Corvane /dev/cvdrv 2>&1 | sed 's/.*cannot access/cannot access/'
  cannot access '/opt/Corvane': No such file or directory
  cannot access '/dev/cvdrv': No such file or directory
