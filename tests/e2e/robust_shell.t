The shell on a hostile terminal: closed standard descriptors, a reader that
goes away, a value in the file that is no threshold.

  $ . "$TESTDIR/lib.sh"
  $ cfg="$CVADM_ROOT/etc/user_cfg.xml"
  $ log="$CVADM_ROOT/opt/Corvane/log"
  $ printf 0 > "$log/serial_oper"

Closed descriptors 0, 1 and 2 are opened on /dev/null before anything else,
so the device node never takes the place of standard output; output that
cannot be delivered makes the exit status a failure:

  $ cv show array <&- >&-; echo "[$?]"
  cvadm: write error on standard output
  [1]
  $ cv show version >&- 2>&-; echo "[$?]"
  [1]
  $ wc -c < "$CVADM_ROOT/dev/cvdrv"
  0
  $ cv show version <&- > "$CRAMTMP/version"; head -c 16 "$CRAMTMP/version"; echo
  Software Version

A reader that goes away does not end a change before its log line: the
change is made, logged, and the status says the output was lost:

  $ { sleep .3; cv set tod_time=1200 2> err.txt; echo "[$?]" > rc.txt; } | true; cat rc.txt err.txt
  [1]
  cvadm: write error on standard output
  $ operlog
  [1] [CLI] [1] [1396789544] [set tod_time=1200] [Set io timeout degrade time 1200 s] [1]
  $ grep -o '<tod_time>[^<]*</tod_time>' "$cfg"
  <tod_time>1200</tod_time>

A stored latency threshold that is no number in its range is reported, not
shown as a number:

  $ cv set io_latency_threshold=30
  Succeeded in executing the command.
  $ for bad in twenty '' -5 120001 4294967326; do
  >   sed -i -E "s#<io_latency_threshold>[^<]*</io_latency_threshold>#<io_latency_threshold>$bad</io_latency_threshold>#" "$cfg"
  >   cv show io_latency_threshold; echo "[$?]"
  > done
  Failed to execute the command due to internal errors.
  cvadm: the stored io_latency_threshold "twenty" is not a valid value.
  [1]
  Failed to execute the command due to internal errors.
  cvadm: the stored io_latency_threshold "" is not a valid value.
  [1]
  Failed to execute the command due to internal errors.
  cvadm: the stored io_latency_threshold "-5" is not a valid value.
  [1]
  Failed to execute the command due to internal errors.
  cvadm: the stored io_latency_threshold "120001" is not a valid value.
  [1]
  Failed to execute the command due to internal errors.
  cvadm: the stored io_latency_threshold "4294967326" is not a valid value.
  [1]
