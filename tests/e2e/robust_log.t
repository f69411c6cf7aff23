A change that cannot be recorded, and a trace log that cannot be opened:
the fixed texts stay, one line on standard error names the file, and the
status is a failure.

  $ . "$TESTDIR/lib.sh"
  $ log="$CVADM_ROOT/opt/Corvane/log"
  $ printf 0 > "$log/serial_oper"

An operation log that is a directory: the change is made, the shell warns,
names the cause and fails:

  $ rm -f "$log/oper_log"; mkdir "$log/oper_log"
  $ cv set tod_time=1000 2>err.txt; echo "[$?]"
  Succeeded in executing the command.
  Warn: Open oper log file fail.
  [1]
  $ sed "s|$CVADM_ROOT||" err.txt
  cvadm: the operation log line was not written: /opt/Corvane/log/oper_log: not a regular file
  $ grep -c '<tod_time>1000</tod_time>' "$CVADM_ROOT/etc/user_cfg.xml"
  1
  $ rmdir "$log/oper_log"

A FIFO in place of the operation log does not hang the program:

  $ mkfifo "$log/oper_log"
  $ timeout 10 "$CVADM_SIM" set tod_time=1001 2>err.txt; echo "[$?]"
  Succeeded in executing the command.
  Warn: Open oper log file fail.
  [1]
  $ rm "$log/oper_log"

With the log back, the next change is recorded again, after the lines the
two changes above still owed:

  $ cv set tod_time=1002; echo "[$?]"
  Succeeded in executing the command.
  [0]
  $ operlog | tail -n 1
  [3] [CLI] [1] [1396789544] [set tod_time=1002] [Set io timeout degrade time 1002 s] [1]
  $ operlog | sed -n 1,2p
  [1] [CLI] [1] [1396789519] [set tod_time=1000] [( tod_time=1000)Write to configuration] [1]
  [2] [CLI] [1] [1396789519] [set tod_time=1001] [( tod_time=1001)Write to configuration] [1]

A trace log that cannot be opened names itself, not only the device:

  $ rm -f "$log/cli_uil_log.txt"; mkdir "$log/cli_uil_log.txt"
  $ cv show version 2>err.txt; echo "[$?]"
  UIL trace log init fail.
  Unable to detect Corvane device node, exit
  [1]
  $ sed "s|$CVADM_ROOT||" err.txt
  cvadm: /opt/Corvane/log/cli_uil_log.txt: not a regular file
  $ rmdir "$log/cli_uil_log.txt"
