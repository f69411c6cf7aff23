The shell: one command from the arguments, routing and refusals.

  $ . "$TESTDIR/lib.sh"

One command, and its exit status:

  $ cvu show version
  Software Version   : 21.01.025
  Driver   Version   : 21.01.030
  [0]
  $ cvu show version verbose
  Software Version   : 21.01.025
  Driver   Version   : 21.01.030
  Product  Version   : 21.0.1
  [0]
  $ cvu show version verbose extra
  Error: Invalid input!
  Usage:
              -- show version [verbose]
  [1]
  $ cvu show version extra
  Error: Invalid input!
  Usage:
              -- show version [verbose]
  [1]

A verb alone, an unknown verb or object:

  $ cvu show
  Error: Need more option
  <usage>
  [1]
  $ cvu frobnicate
  Error: Input Option is not supported.
  <usage>
  [1]
  $ cvu show nothing
  Error: Input Option is not supported.
  <usage>
  [1]
  $ cvu stop
  Error: Need more option
  <usage>
  [1]

quit and debug drop out of the line:

  $ cvu quit
  [0]
  $ cvu debug
  [0]
  $ cvu debug show version
  Software Version   : 21.01.025
  Driver   Version   : 21.01.030
  [0]

The program name repeated as the first argument is dropped:

  $ LD_PRELOAD="$CVSIM_LIB" "$CVADM_BIN" "$CVADM_BIN" show version
  Software Version   : 21.01.025
  Driver   Version   : 21.01.030
  $ echo $?
  0

At most 8 arguments, none over 63 characters unless it names a file:

  $ cvu show version a b c d e f g
  Error: not allowed input.
  <usage>
  [1]
  $ cvu show version a b c d e f
  Error: Invalid input!
  Usage:
              -- show version [verbose]
  [1]
  $ cvu show version aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa
  Error: not allowed input.
  <usage>
  [1]
  $ cvu show version aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa
  Error: Invalid input!
  Usage:
              -- show version [verbose]
  [1]
  $ cvu show version file_name=aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa
  Error: Invalid input!
  Usage:
              -- show version [verbose]
  [1]

set dispatches on the text before "="; bare-keyword commands refuse key=value:

  $ cvu set phypathnormal=1
  Error: Input Option is not supported.
  <usage>
  [1]
  $ cvu set default
  Error: Input Option is not supported.
  <usage>
  [1]
  $ cvu set
  Error: Need more option
  <usage>
  [1]
  $ cvu set nosuchkey=1
  Error: Input Option is not supported.
  <usage>
  [1]

The hidden start diskdriverupdate writes a trace line and fails:

  $ cvu start diskdriverupdate
  [1]
  $ tracelog | grep Windows
  \[0000534213c0[0-9a-f]{4}\] \[ERROR\] \[UIL   \] \[MPCLI_StartDiskDriverUpdate: [0-9]+ \] This function is only for Windows OS\. (re)

genprkey: a 20-character key:

  $ cv genprkey | grep -cE '^-?[0-9]{19,20}$'
  1
  $ cv genprkey | awk '{ print length($0) }'
  20
  $ cvu genprkey now
  Error: Invalid input!
   Usage:
      -- genprkey
  [1]

show workerstate with the simulated clock:

  $ cvu show workerstate
  worker name: cv_path_check            \tlast refresh time: 2026-11-18 11:06:38\tpresent time: 2026-11-18 11:06:40 (esc)
  worker name: cv_failback              \tlast refresh time: 2026-11-18 11:06:35\tpresent time: 2026-11-18 11:06:40 (esc)
  worker name: cv_io_statistic          \tlast refresh time: 2026-11-18 11:06:39\tpresent time: 2026-11-18 11:06:40 (esc)
  worker name: cv_alarm_report          \tlast refresh time: 2026-11-18 11:06:30\tpresent time: 2026-11-18 11:06:40 (esc)
  [0]
  $ cvu show workerstate all
  Error: Invalid input!
   Usage:
  show workerstate                       --  Display the state of the driver worker threads.
  [1]
