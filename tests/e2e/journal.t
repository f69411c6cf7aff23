A change whose writer died after the driver could have taken it, before the
file was saved and its log line written, is completed by the next change:
sent to the driver again, saved, and logged once with its outcome.

  $ . "$TESTDIR/lib.sh"
  $ log="$CVADM_ROOT/opt/Corvane/log"
  $ printf 0 > "$log/serial_oper"
  $ record() {
  >   /usr/bin/python3 -c '
  > import sys
  > body = "cvadm intent 1\nphase=%s\ntype=100\nkey=\nitem=%s\nop=set\nvalue=%s\nserial=0\nline=\n" % tuple(sys.argv[1:4])
  > h = 1469598103934665603
  > for c in body.encode():
  >     h = ((h ^ c) * 1099511628211) % 2**64
  > sys.stdout.write(body + "sum=%016x\n" % h)' "$@" > "$CVADM_ROOT/etc/user_cfg.xml.intent.$4"
  > }
  $ record sent tod_time 1234 99.0
  $ cv set tod_threshold=3; echo "[$?]"
  Succeeded in executing the command.
  [0]
  $ operlog
  [1] [CLI] [1] [1396789519] [set tod_time=1234] [( tod_time=1234)Write to configuration] [1]
  [2] [CLI] [1] [1396789545] [set tod_threshold=3] [Set io timeout degrade threshold 3 times] [1]
  $ grep -c '<tod_time>1234</tod_time>' "$CVADM_ROOT/etc/user_cfg.xml"
  1
  $ grep -c "$(printf 'tod_time' | od -An -tx1 | tr -d ' \n')" "$CVADM_ROOT/sim/requests.log"
  1
  $ ls "$CVADM_ROOT/etc" | grep -c intent
  0
  [1]

A record saved but not logged gets its line only; the driver is not told
again:

  $ record saved tod_time 1234 98.0
  $ cv set tod_threshold=4 > /dev/null
  $ operlog | tail -n 2
  [3] [CLI] [1] [1396789519] [set tod_time=1234] [( tod_time=1234)Write to configuration] [1]
  [4] [CLI] [1] [1396789545] [set tod_threshold=4] [Set io timeout degrade threshold 4 times] [1]
  $ grep -c "$(printf 'tod_time' | od -An -tx1 | tr -d ' \n')" "$CVADM_ROOT/sim/requests.log"
  1

A damaged record is named on standard error, set aside and never acted on:

  $ record sent tod_time 1500 97.0
  $ sed -i 's/1500/1600/' "$CVADM_ROOT/etc/user_cfg.xml.intent.97.0"
  $ cv set tod_threshold=5 2>err.txt; echo "[$?]"
  Succeeded in executing the command.
  [0]
  $ sed "s|$CVADM_ROOT||g" err.txt
  cvadm: /etc/user_cfg.xml.intent.97.0: damaged journal record, set aside as /etc/user_cfg.xml.intent.97.0.damaged
  $ grep -c '<tod_time>1234</tod_time>' "$CVADM_ROOT/etc/user_cfg.xml"
  1
  $ operlog | tail -n 1
  [5] [CLI] [1] [1396789545] [set tod_threshold=5] [Set io timeout degrade threshold 5 times] [1]
