The I/O latency event threshold: shown from and set into the user
configuration, told to the driver, written to the operation log.

  $ . "$TESTDIR/lib.sh"
  $ cfg="$CVADM_ROOT/etc/user_cfg.xml"
  $ log="$CVADM_ROOT/opt/Corvane/log"
  $ printf 0 > "$log/serial_oper"
  $ item() { grep -o "<io_latency_threshold>[^<]*</io_latency_threshold>" "$cfg"; }

The value the configuration holds:

  $ cv show io_latency_threshold
  io_latency_threshold : 20
  $ cvu show io_latency_threshold extra
  Error: Invalid input!
  Usage:
      -- show io_latency_threshold
  [1]

Both ends of the range are accepted; 0 turns the latency event off:

  $ for value in 0 120000; do
  >   cv set io_latency_threshold=$value && item && cv show io_latency_threshold && notified
  > done
  Succeeded in executing the command.
  <io_latency_threshold>0</io_latency_threshold>
  io_latency_threshold : 0
  nr=70 result=1024 size=140 type=100 instance='' count=1 item=io_latency_threshold value=0
  other bytes zero: True
  Succeeded in executing the command.
  <io_latency_threshold>120000</io_latency_threshold>
  io_latency_threshold : 120000
  nr=70 result=1024 size=140 type=100 instance='' count=1 item=io_latency_threshold value=120000
  other bytes zero: True
  $ operlog
  [1] [CLI] [1] [1396789589] [set io_latency_threshold=0] [Set IO latency threshold time 0 ms] [1]
  [2] [CLI] [1] [1396789589] [set io_latency_threshold=120000] [Set IO latency threshold time 120000 ms] [1]

One past the end, a value that is no number, and a missing value are
refused without asking the driver:

  $ : > "$CVADM_ROOT/sim/requests.log"
  $ usage_of latency set io_latency_threshold=120001
  Error: Invalid input!
  Usage:
  set io_latency_threshold=<time>        --  set io latency threshold.
                                         --  time is in the range 0~120000, unit is ms.
                                         --  0 means do not print the I/O latency event.
                                         --  Default is 20.
  [1]
  $ refusals <<'EOF'
  > set io_latency_threshold=-1
  > set io_latency_threshold=20ms
  > set io_latency_threshold
  > set io_latency_threshold=
  > EOF
  [1] set io_latency_threshold=-1: Error: Invalid input! | <latency usage>
  [1] set io_latency_threshold=20ms: Error: Invalid input! | <latency usage>
  [1] set io_latency_threshold: Error: Invalid input! | Usage: |            --set io_latency_threshold=<time>
  [1] set io_latency_threshold=: Error: Invalid input! | Usage: |            --set io_latency_threshold=<time>
  $ wc -c < "$CVADM_ROOT/sim/requests.log"
  0
  $ item
  <io_latency_threshold>120000</io_latency_threshold>

A refused change leaves the old value in force and in the file:

  $ echo "70 code=1031" > "$CVADM_ROOT/sim/faults"
  $ cvu set io_latency_threshold=50
  Failed to execute the command due to internal errors.
  [1]
  $ rm "$CVADM_ROOT/sim/faults"
  $ cv show io_latency_threshold
  io_latency_threshold : 120000
  $ operlog | tail -n 1
  [3] [CLI] [1] [1396789589] [set io_latency_threshold=50] [Set IO latency threshold time 50 ms] [0]

A configuration without the item shows the driver's default; without a
configuration file the value cannot be read:

  $ sed -i '/io_latency_threshold/d' "$cfg"
  $ cv show io_latency_threshold
  io_latency_threshold : 20
  $ cv set io_latency_threshold=35
  Succeeded in executing the command.
  $ item
  <io_latency_threshold>35</io_latency_threshold>
  $ rm "$cfg"
  $ cvu show io_latency_threshold
  cvadm: the configuration file */root/etc/user_cfg.xml is missing or cannot be parsed. (glob)
  Failed to execute the command due to internal errors.
  [1]

The help line of each command:

  $ cv help show io_latency_threshold
  show io_latency_threshold              --  Display the I/O latency threshold.
  $ cv help set io_latency_threshold
  set io_latency_threshold=<time>        --  Set the I/O latency threshold.
                                         --  time is in the range 0-120000, unit is millisecond.
                                         --  0 means do not print the I/O latency event.
                                         --  Default is 20.
