The driver channel: refused requests and their trace lines.

  $ . "$TESTDIR/lib.sh"

A driver that leaves the result untouched fails the request even though
ioctl returned 0:

  $ echo "1 untouched" > "$CVADM_ROOT/sim/faults"
  $ cvu show version
  [1]
  $ tracelog | grep -E 'Send Ioctl|Version'
  \[0000534212c0[0-9a-f]{4}\] \[ERROR\] \[UIA   \] \[INTF_UIA_Ioctl: [0-9]+ \] Send Ioctl \{2148289793\} fail. ret \{0\}.errno:0.--Success (re)
  \[0000534213c0[0-9a-f]{4}\] \[ERROR\] \[UIL   \] \[MPCLI_ShowVersion: [0-9]+ \] Get Version info fail. (re)
  $ echo "1 refuse" > "$CVADM_ROOT/sim/faults"
  $ cvu show version verbose
  [1]
  $ tracelog | grep 'Send Ioctl' | tail -n 1
  \[0000534212c0[0-9a-f]{4}\] \[ERROR\] \[UIA   \] \[INTF_UIA_Ioctl: [0-9]+ \] Send Ioctl \{2148289793\} fail. ret \{-1\}.errno:5.--Input/output error (re)
  $ echo "1 code=1031" > "$CVADM_ROOT/sim/faults"
  $ cvu show version
  [1]
  $ echo "100 refuse" > "$CVADM_ROOT/sim/faults"
  $ cvu show workerstate
  Failed to execute the command due to internal errors.
  [1]
  $ rm "$CVADM_ROOT/sim/faults"

The request log shows the version request and its payload:

  $ : > "$CVADM_ROOT/sim/requests.log"
  $ cv show version > /dev/null
  $ cat "$CVADM_ROOT/sim/requests.log"
  nr=1 code=0x800c4d01 size=12 result=1024 in=000000000000000000000000 out=15000000010000001e000000

A driver that claims 4294967295 workers is believed only up to 64: the
program stops at the first worker the driver cannot give.

  $ echo "100 count=4294967295" > "$CVADM_ROOT/sim/faults"
  $ cvu show workerstate
  Failed to execute the command due to internal errors.
  [1]
  $ grep -c 'nr=100 ' "$CVADM_ROOT/sim/requests.log"
  5
  $ tracelog | grep -c 'Worker count {4294967295} exceed 64'
  4
