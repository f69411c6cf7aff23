The host-wide driver settings of the array family: failback delay and the
path checker's two intervals. Each is checked against its range, told to
the driver, saved at the common level of the user configuration and
written to the operation log.

  $ . "$TESTDIR/lib.sh"
  $ cfg="$CVADM_ROOT/etc/user_cfg.xml"
  $ log="$CVADM_ROOT/opt/Corvane/log"
  $ printf 0 > "$log/serial_oper"
  $ common() { /usr/bin/python3 -c '
  > import sys, xml.etree.ElementTree as ET
  > e = ET.parse(sys.argv[1]).getroot().find("common").find(sys.argv[2])
  > print("common %s=%s" % (sys.argv[2], None if e is None else e.text))' "$cfg" "$1"; }

Both ends of each range are taken and stored at the common level; the
driver hears of each value before the file keeps it:

  $ while read keyword name low high; do
  >   for value in $low $high; do
  >     cv set $keyword=$value || echo "[$?]"
  >     common $name; notified
  >   done
  > done <<'EOF'
  > failbackdelaytime failbackdelaytime 0 3600
  > faulty_path_check_interval failpath_check_interval 1 2592000
  > idle_path_check_interval idlepath_check_interval 1 2592000
  > EOF
  Succeeded in executing the command.
  common failbackdelaytime=0
  nr=70 result=1024 size=140 type=100 instance='' count=1 item=failbackdelaytime value=0
  other bytes zero: True
  Succeeded in executing the command.
  common failbackdelaytime=3600
  nr=70 result=1024 size=140 type=100 instance='' count=1 item=failbackdelaytime value=3600
  other bytes zero: True
  Succeeded in executing the command.
  common failpath_check_interval=1
  nr=70 result=1024 size=140 type=100 instance='' count=1 item=failpath_check_interval value=1
  other bytes zero: True
  Succeeded in executing the command.
  common failpath_check_interval=2592000
  nr=70 result=1024 size=140 type=100 instance='' count=1 item=failpath_check_interval value=2592000
  other bytes zero: True
  Succeeded in executing the command.
  common idlepath_check_interval=1
  nr=70 result=1024 size=140 type=100 instance='' count=1 item=idlepath_check_interval value=1
  other bytes zero: True
  Succeeded in executing the command.
  common idlepath_check_interval=2592000
  nr=70 result=1024 size=140 type=100 instance='' count=1 item=idlepath_check_interval value=2592000
  other bytes zero: True

One step outside a range, a signed or suffixed number and a missing value
are refused with the setting's usage; nothing reaches the driver, the file
or the operation log:

  $ : > "$CVADM_ROOT/sim/requests.log"; cp "$cfg" before.xml
  $ usage_of failback set failbackdelaytime=3601
  Error: Invalid input!
  Usage:
  set failbackdelaytime=<time>           --  Set the failback delay time.
                                         --  time is in the range 0-3600, unit is second.
                                         --  Default is 600.
  [1]
  $ refusals <<'EOF'
  > set failbackdelaytime=-1
  > set failbackdelaytime=60s
  > set failbackdelaytime
  > set failbackdelaytime=600 array_id=1
  > set faulty_path_check_interval=0
  > set faulty_path_check_interval=2592001
  > set idle_path_check_interval=0
  > set idle_path_check_interval=2592001
  > set idle_path_check_interval=
  > EOF
  [1] set failbackdelaytime=-1: Error: Invalid input! | <failback usage>
  [1] set failbackdelaytime=60s: Error: Invalid input! | <failback usage>
  [1] set failbackdelaytime: Error: Invalid input! | Usage: |            --set failbackdelaytime=<time>
  [1] set failbackdelaytime=600 array_id=1: Error: Invalid input! | Usage: |            --set failbackdelaytime=<time>
  [1] set faulty_path_check_interval=0: Error: Invalid input! | Usage: | set faulty_path_check_interval=<time>  --  Set the check interval of faulty paths. |                                        --  time is in the range 1-2592000, unit is second. |                                        --  Default is 10.
  [1] set faulty_path_check_interval=2592001: Error: Invalid input! | Usage: | set faulty_path_check_interval=<time>  --  Set the check interval of faulty paths. |                                        --  time is in the range 1-2592000, unit is second. |                                        --  Default is 10.
  [1] set idle_path_check_interval=0: Error: Invalid input! | Usage: | set idle_path_check_interval=<time>    --  Set the check interval of idle paths. |                                        --  time is in the range 1-2592000, unit is second. |                                        --  Default is 60.
  [1] set idle_path_check_interval=2592001: Error: Invalid input! | Usage: | set idle_path_check_interval=<time>    --  Set the check interval of idle paths. |                                        --  time is in the range 1-2592000, unit is second. |                                        --  Default is 60.
  [1] set idle_path_check_interval=: Error: Invalid input! | Usage: |            --set idle_path_check_interval=<time>
  $ wc -l < "$CVADM_ROOT/sim/requests.log"; cmp "$cfg" before.xml && echo same file
  0
  same file
  $ operlog
  [1] [CLI] [1] [1396789510] [set failbackdelaytime=0] [Set failback time to 0 s] [1]
  [2] [CLI] [1] [1396789510] [set failbackdelaytime=3600] [Set failback time to 3600 s] [1]
  [3] [CLI] [1] [1396789541] [set faulty_path_check_interval=1] [Set faulty path check interval 1 s] [1]
  [4] [CLI] [1] [1396789541] [set faulty_path_check_interval=2592000] [Set faulty path check interval 2592000 s] [1]
  [5] [CLI] [1] [1396789542] [set idle_path_check_interval=1] [Set idle path check interval 1 s] [1]
  [6] [CLI] [1] [1396789542] [set idle_path_check_interval=2592000] [Set idle path check interval 2592000 s] [1]

The alarm push and path reliability switches ask first. Only a lone "y"
goes on; "n" and an answer nobody gives (end of input) change nothing and
write no log line. The store keeps "1"/"0":

  $ : > "$CVADM_ROOT/sim/requests.log"
  $ echo n | cv set alarmenable=off; echo "[$?]"; common alarmenable
  
  If you close alarm enable, the host would not push alarm to the array, and the alarm in array will not be cleared. 
  Are you sure you want to continue? [y,n]: 
  [0]
  common alarmenable=1
  $ cv set path_reliability_enable=off < /dev/null; echo "[$?]"; common reliabilityenable
  
  If you close reliability enable, this would abandon the path reliability check and may infect the performance. 
  Are you sure you want to continue? [y,n]: [0]
  common reliabilityenable=1
  $ wc -l < "$CVADM_ROOT/sim/requests.log"; operlog | wc -l
  0
  6
  $ echo y | cv set alarmenable=off; echo "[$?]"; common alarmenable; notified
  
  If you close alarm enable, the host would not push alarm to the array, and the alarm in array will not be cleared. 
  Are you sure you want to continue? [y,n]: 
  Succeeded in executing the command.
  Please clear the alarm in the array manually, thanks.
  [0]
  common alarmenable=0
  nr=70 result=1024 size=140 type=100 instance='' count=1 item=alarmenable value=0
  other bytes zero: True
  $ echo y | cv set alarmenable=on; echo "[$?]"; common alarmenable
  
  If you open alarm enable, the host would push alarm to the array. 
  Are you sure you want to continue? [y,n]: 
  Succeeded in executing the command.
  [0]
  common alarmenable=1
  $ echo y | cv set path_reliability_enable=off; echo "[$?]"; common reliabilityenable; notified
  
  If you close reliability enable, this would abandon the path reliability check and may infect the performance. 
  Are you sure you want to continue? [y,n]: 
  Succeeded in executing the command.
  [0]
  common reliabilityenable=0
  nr=70 result=1024 size=140 type=100 instance='' count=1 item=reliabilityenable value=0
  other bytes zero: True
  $ echo y | cv set path_reliability_enable=on; echo "[$?]"; common reliabilityenable
  
  If you open reliability enable, this would recover the path reliability check. 
  Are you sure you want to continue? [y,n]: 
  Succeeded in executing the command.
  [0]
  common reliabilityenable=1
  $ operlog | tail -n 4
  [7] [CLI] [1] [1396789582] [set alarmenable=off] [Disable AlarmEnable feature ] [1]
  [8] [CLI] [1] [1396789582] [set alarmenable=on] [Enable AlarmEnable feature ] [1]
  [9] [CLI] [1] [1396789585] [set path_reliability_enable=off] [Disable ReliabilityEnable feature ] [1]
  [10] [CLI] [1] [1396789585] [set path_reliability_enable=on] [Enable ReliabilityEnable feature ] [1]

Anything but the two words is refused before the question:

  $ : > "$CVADM_ROOT/sim/requests.log"; cp "$cfg" before.xml
  $ usage_of alarm set alarmenable=ON
  Error: Invalid input!
  Usage:
  set alarmenable={on|off}               --  Enable or disable the alarm push to the array.
                                         --  Default is on.
  [1]
  $ usage_of reliability set path_reliability_enable=1
  Error: Invalid input!
  Usage:
  set path_reliability_enable={on|off}   --  Enable or disable the path reliability check.
                                         --  Default is on.
  [1]
  $ refusals <<'EOF'
  > set alarmenable=yes
  > set alarmenable=1
  > set alarmenable
  > set alarmenable=on extra
  > set path_reliability_enable=ON
  > set path_reliability_enable=no
  > set path_reliability_enable=
  > EOF
  [1] set alarmenable=yes: Error: Invalid input! | <alarm usage>
  [1] set alarmenable=1: Error: Invalid input! | <alarm usage>
  [1] set alarmenable: Error: Invalid input! | <alarm usage>
  [1] set alarmenable=on extra: Error: Invalid input! | <alarm usage>
  [1] set path_reliability_enable=ON: Error: Invalid input! | <reliability usage>
  [1] set path_reliability_enable=no: Error: Invalid input! | <reliability usage>
  [1] set path_reliability_enable=: Error: Invalid input! | <reliability usage>
  $ wc -l < "$CVADM_ROOT/sim/requests.log"; cmp "$cfg" before.xml && echo same file; operlog | wc -l
  0
  same file
  10

I/O retry: both words, both checked, stored together; the record holds
the two values:

  $ cv set ioretry=60 ioretrydelay=10; echo "[$?]"; common ioretry; common ioretrydelay
  Succeeded in executing the command.
  [0]
  common ioretry=60
  common ioretrydelay=10
  $ cv set ioretry=0 ioretrydelay=0; echo "[$?]"; common ioretry; common ioretrydelay
  Succeeded in executing the command.
  [0]
  common ioretry=0
  common ioretrydelay=0
  $ operlog | tail -n 2
  [11] [CLI] [1] [1396789512] [set ioretry=60 ioretrydelay=10] [Set IO retry count to 60 and retry interval to 10 s] [1]
  [12] [CLI] [1] [1396789512] [set ioretry=0 ioretrydelay=0] [Set IO retry count to 0 and retry interval to 0 s] [1]
  $ : > "$CVADM_ROOT/sim/requests.log"; cp "$cfg" before.xml
  $ usage_of ioretry set ioretry=61 ioretrydelay=0
  Error: Invalid input!
  Usage:
  set ioretry=<number> ioretrydelay=<time>
                                         --  Set the I/O retry times and the I/O retry delay time.
                                         --  number is in the range 0-60. Default is 10.
                                         --  time is in the range 0-10, unit is second. Default is 0.
                                         --  Notice: In the first three times, I/O will retry immediately.
  [1]
  $ refusals <<'EOF'
  > set ioretry=1 ioretrydelay=11
  > set ioretry=1
  > set ioretry=1 delay=1
  > set ioretrydelay=1 ioretry=1
  > set ioretry=1 ioretrydelay=1 extra
  > set ioretry=x ioretrydelay=1
  > EOF
  [1] set ioretry=1 ioretrydelay=11: Error: Invalid input! | <ioretry usage>
  [1] set ioretry=1: Error: Invalid input! | Usage: |            -- set ioretry=<number> ioretrydelay=<time>
  [1] set ioretry=1 delay=1: Error: Invalid input! | Usage: |            -- set ioretry=<number> ioretrydelay=<time>
  [1] set ioretrydelay=1 ioretry=1: Error: Input Option is not supported. | <usage>
  [1] set ioretry=1 ioretrydelay=1 extra: Error: Invalid input! | Usage: |            -- set ioretry=<number> ioretrydelay=<time>
  [1] set ioretry=x ioretrydelay=1: Error: Invalid input! | <ioretry usage>
  $ wc -l < "$CVADM_ROOT/sim/requests.log"; cmp "$cfg" before.xml && echo same file
  0
  same file

Performance record: on with a duration of up to 8760 hours; on again is
refused while the driver records; off always goes through:

  $ cv set performance_record=on duration=8760; echo "[$?]"
  Succeeded in executing the command.
  [0]
  $ common performance_record; common performance_record_duration
  common performance_record=1
  common performance_record_duration=8760
  $ cv set performance_record=on; echo "[$?]"
  The command fails to be executed because the performance statistics function is on.
  [1]
  $ cv set performance_record=off; echo "[$?]"; common performance_record
  Succeeded in executing the command.
  [0]
  common performance_record=0
  $ cv set performance_record=on; echo "[$?]"; common performance_record_duration
  Succeeded in executing the command.
  [0]
  common performance_record_duration=0
  $ operlog | tail -n 3
  [13] [CLI] [1] [1396789603] [set performance_record=on duration=8760] [Open performance record, duration is 8760 hours] [1]
  [14] [CLI] [1] [1396789603] [set performance_record=off] [Close performance record, duration is 0 hours] [1]
  [15] [CLI] [1] [1396789603] [set performance_record=on] [Open performance record, duration is 0 hours] [1]
  $ cv set performance_record=off > /dev/null
  $ cp "$cfg" before.xml
  $ usage_of perf set performance_record=on duration=8761
  Error: Invalid input!
  Usage:
  set performance_record={on|off} [duration=<time>]
                                         --  Turn the performance record on or off.
                                         --  time is in the range 0-8760, unit is hour.
                                         --  0 means record all the time.
                                         --  Default is 0.
  [1]
  $ refusals <<'EOF'
  > set performance_record=ON
  > set performance_record=1
  > set performance_record=on duration=-1
  > set performance_record=on duration=
  > set performance_record=on time=5
  > set performance_record=on duration=5 extra
  > EOF
  [1] set performance_record=ON: Error: Invalid input! | <perf usage>
  [1] set performance_record=1: Error: Invalid input! | <perf usage>
  [1] set performance_record=on duration=-1: Error: Invalid input! | <perf usage>
  [1] set performance_record=on duration=: Error: Invalid input! | <perf usage>
  [1] set performance_record=on time=5: Error: Invalid input! | <perf usage>
  [1] set performance_record=on duration=5 extra: Error: Invalid input! | <perf usage>
  $ cmp "$cfg" before.xml && echo same file
  same file

Ending the I/O suspension of a disk: one request with the disk ID; a word
that is not an ID gets the full usage:

  $ : > "$CVADM_ROOT/sim/requests.log"
  $ cv set stop_iosuspension 3; echo "[$?]"; requests
  Succeeded in executing the command.
  [0]
  nr=69 code=0x80044d45 size=4 result=1024
  $ operlog | tail -n 1
  [17] [CLI] [1] [1396789588] [set stop_iosuspension 3] [Close {3} io suspension] [1]
  $ refusals <<'EOF'
  > set stop_iosuspension
  > set stop_iosuspension x
  > set stop_iosuspension 16384
  > set stop_iosuspension 1 2
  > EOF
  [1] set stop_iosuspension: Error: Invalid input! | <usage>
  [1] set stop_iosuspension x: Error: Invalid input! | <usage>
  [1] set stop_iosuspension 16384: Error: Invalid input! | <usage>
  [1] set stop_iosuspension 1 2: Error: Invalid input! | <usage>
  $ wc -l < "$CVADM_ROOT/sim/requests.log"
  1
