Numbers are read one way everywhere: digits only, and a value past 32 bits
or past its range is refused with the text of any out-of-range value; it
never wraps around into the range.

  $ . "$TESTDIR/lib.sh"
  $ cfg="$CVADM_ROOT/etc/user_cfg.xml"
  $ cp "$cfg" before.xml
  $ : > "$CVADM_ROOT/sim/requests.log"

A setting past 2^32-1 is refused like one just past its range; neither the
file nor the driver sees it:

  $ cvu set io_latency_threshold=4294967296
  Error: Invalid input!
  Usage:
  set io_latency_threshold=<time>        --  set io latency threshold.
                                         --  time is in the range 0~120000, unit is ms.
                                         --  0 means do not print the I/O latency event.
                                         --  Default is 20.
  [1]
  $ cv set io_latency_threshold=120001 | cmp - <(cv set io_latency_threshold=4294967296) && echo same text
  same text
  $ cvu set tod_time=4294967896
  Error: Invalid input!
  Usage:
  set tod_time=<time>                    --  Set I/O timeout degrade time.
                                         --  time is in the range 60-2592000, unit is second.
                                         --  Default is 600.
  [1]
  $ for value in 4294967295 4294967296 18446744073709551616 99999999999999999999999; do
  >   for key in tod_threshold ied_min_io; do cv set $key=$value > out.txt; sed -n 1p out.txt; done
  > done
  Error: Invalid input!
  Error: Invalid input!
  Error: Invalid input!
  Error: Invalid input!
  Error: Invalid input!
  Error: Invalid input!
  Error: Invalid input!
  Error: Invalid input!
  $ cmp before.xml "$cfg" && echo file unchanged
  file unchanged
  $ grep -c 'nr=70' "$CVADM_ROOT/sim/requests.log"
  0
  [1]
  $ cv show io_latency_threshold
  io_latency_threshold : 20

An array ID past the ID range is refused alike by show path and show vlun,
before the driver is asked:

  $ cv show path array_id=99999; echo "[$?]"
  Error: 99999 is out of range
  Error: Invalid input!
  Usage:
     -- show path [id=<ID1,ID2,...>|array_id=ID]
  [1]
  $ cv show vlun array_id=99999 > out.txt; echo "[$?]"; sed -n 1,2p out.txt
  [1]
  Error: 99999 is out of range
  Error: Invalid input!
  $ for id in 16384 999999999; do cv show path array_id=$id > out.txt; sed -n 1,2p out.txt; done
  Error: 16384 is out of range
  Error: Invalid input!
  Error: 999999999 is out of range
  Error: Invalid input!
