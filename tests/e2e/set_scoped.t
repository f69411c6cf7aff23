The scoped setters: the host, one array (after a question) or a list of
VLUNs. Where the value lands in the user configuration, what the driver
hears, and the operation-log line of each object.

  $ . "$TESTDIR/lib.sh"
  $ cfg="$CVADM_ROOT/etc/user_cfg.xml"
  $ printf 0 > "$CVADM_ROOT/opt/Corvane/log/serial_oper"
  $ levels() { /usr/bin/python3 -c '
  > import sys, xml.etree.ElementTree as ET
  > root = ET.parse(sys.argv[1]).getroot()
  > def walk(node, where):
  >     for child in node:
  >         if child.tag == sys.argv[2]:
  >             print("%s %s=%s" % (where, child.tag, child.text))
  >         elif len(child):
  >             name = child.get("sn") or child.get("wwn") or child.get("id") or ""
  >             walk(child, (where + " " + child.tag + (":" + name if name else "")).strip())
  > walk(root, "")' "$cfg" "$1"; }

Host level: each keyword, its item and the value the store keeps:

  $ while read words item; do
  >   cv set $words || echo "[$?]"; levels $item
  > done <<'EOF'
  > workingmode=0 workingmode
  > loadbalancemode=min-task loadbalancemode
  > luntrespass=off luntrespass
  > iosuspensiontime=2592000 iosuspensiontime
  > lb_io_threshold=10000 lb_io_threshold
  > max_io_retry_timeout=1 io_timeout
  > EOF
  Succeeded in executing the command.
  common workingmode=0
  Succeeded in executing the command.
  common loadbalancemode=min-task
  Succeeded in executing the command.
  common luntrespass=0
  Succeeded in executing the command.
  common iosuspensiontime=2592000
  Succeeded in executing the command.
  common lb_io_threshold=10000
  Succeeded in executing the command.
  common io_timeout=1
  $ operlog
  [1] [CLI] [0] [1396789505] [set workingmode=0] [Close LB between controller ] [1]
  [2] [CLI] [1] [1396789507] [set loadbalancemode=min-task] [Modify LB Algorithm to minimal task algotithm] [1]
  [3] [CLI] [1] [1396789508] [set luntrespass=off] [Close Luntrespass feature ] [1]
  [4] [CLI] [1] [1396789511] [set iosuspensiontime=2592000] [Set hold on time to 2592000 s ] [1]
  [5] [CLI] [1] [1396789540] [set lb_io_threshold=10000] [Set the number (10000) of I/O to route to a path before switching to the next path ] [1]
  [6] [CLI] [1] [1396789543] [set max_io_retry_timeout=1] [Set io retry timeout 1 s ] [1]

A VLUN list and a range; loadbalancemode reports each ID of a list:

  $ cv set lb_io_threshold=7 vlun_id=0,1; echo "[$?]"; levels lb_io_threshold
  Succeeded in executing the command.
  [0]
  common lb_io_threshold=10000
  lun lun62c7f1a10b4c8a10000000000000000b lb_io_threshold=7
  lun lun62c7f1a10b4c8a10000000000000000c lb_io_threshold=7
  $ cv set loadbalancemode=round-robin vlun_id=0-2; echo "[$?]"; levels loadbalancemode
  Succeeded in executing the command for vlun 0.
  Succeeded in executing the command for vlun 1.
  Succeeded in executing the command for vlun 2.
  [0]
  common loadbalancemode=min-task
  lun lun62c7f1a10b4c8a10000000000000000b loadbalancemode=round-robin
  lun lun62c7f1a10b4c8a10000000000000000c loadbalancemode=round-robin
  lun lun62c7f1a10b4c8a10000000000000000d loadbalancemode=round-robin
  $ cv set loadbalancemode=min-task vlun_id=1; echo "[$?]"
  Succeeded in executing the command.
  [0]
  $ operlog | tail -n 6
  [7] [CLI] [1] [1396789540] [set lb_io_threshold=7 vlun_id=0,1] [Set the number (7) of I/O to route to a path before switching to the next path for vlun id 0] [1]
  [8] [CLI] [1] [1396789540] [set lb_io_threshold=7 vlun_id=0,1] [Set the number (7) of I/O to route to a path before switching to the next path for vlun id 1] [1]
  [9] [CLI] [1] [1396789507] [set loadbalancemode=round-robin vlun_id=0-2] [Modify LB Algorithm to round robin algorithm] [1]
  [10] [CLI] [1] [1396789507] [set loadbalancemode=round-robin vlun_id=0-2] [Modify LB Algorithm to round robin algorithm] [1]
  [11] [CLI] [1] [1396789507] [set loadbalancemode=round-robin vlun_id=0-2] [Modify LB Algorithm to round robin algorithm] [1]
  [12] [CLI] [1] [1396789507] [set loadbalancemode=min-task vlun_id=1] [Modify LB Algorithm to minimal task algotithm] [1]

An array value replaces the VLUNs' own values of that array; it is asked
for first, and "n" changes nothing (the one request only asks whether the
array exists, so that a missing array is named before the question):

  $ cp "$cfg" before.xml; : > "$CVADM_ROOT/sim/requests.log"
  $ echo n | cv set lb_io_threshold=9 array_id=0; echo "[$?]"
  
  The current configuration will overwrite the configuration of all VLUNs in this array. 
  Are you sure you want to continue? [y,n]: 
  [0]
  $ cmp "$cfg" before.xml && echo same file; wc -l < "$CVADM_ROOT/sim/requests.log"
  same file
  1
  $ echo y | cv set lb_io_threshold=9 array_id=0; echo "[$?]"; levels lb_io_threshold
  
  The current configuration will overwrite the configuration of all VLUNs in this array. 
  Are you sure you want to continue? [y,n]: 
  Succeeded in executing the command.
  [0]
  common lb_io_threshold=10000
  array array2102351QLH10K7000001 lb_io_threshold=9
  $ echo y | cv set loadbalancemode=min-task array_id=0,1; echo "[$?]"
  
  The current configuration will overwrite the configuration of all VLUNs in this array. 
  Are you sure you want to continue? [y,n]: 
  Succeeded in executing the command for array_id 0.
  Succeeded in executing the command for array_id 1.
  [0]
  $ operlog | tail -n 3
  [13] [CLI] [1] [1396789540] [set lb_io_threshold=9 array_id=0] [Set the number (9) of I/O to route to a path before switching to the next path for array id 0] [1]
  [14] [CLI] [1] [1396789507] [set loadbalancemode=min-task array_id=0,1] [Modify LB Algorithm to minimal task algotithm] [1]
  [15] [CLI] [1] [1396789507] [set loadbalancemode=min-task array_id=0,1] [Modify LB Algorithm to minimal task algotithm] [1]

A VLUN or array that does not exist is named; the others still get the
value:

  $ cv set iosuspensiontime=5 vlun_id=2,4000; echo "[$?]"
  The VLUN whose ID is 4000 does not exist.
  [1]
  $ echo y | cv set iosuspensiontime=5 array_id=77; echo "[$?]"
  The disk array whose ID is 77 does not exist.
  [1]
  $ cv set loadbalancemode=round-robin vlun_id=4000,0; echo "[$?]"
  The VLUN whose ID is 4000 does not exist.
  Succeeded in executing the command for vlun 0.
  [1]

Refusals: each prints the command's usage and touches nothing. workingmode
takes exactly 0 or 1, the switches exactly on or off; a range holds at most
16384 VLUNs:

  $ cp "$cfg" before.xml; : > "$CVADM_ROOT/sim/requests.log"; operlog > before.log
  $ usage_of workingmode set workingmode=2
  Error: Invalid input!
  Usage:
  set workingmode={0|1} [array_id=ID|vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}]
                                         --  Set the working mode.
                                         --  0: load balancing between controllers.
                                         --  1: load balancing within controller.
                                         --  Default is 1.
  [1]
  $ usage_of trespass set luntrespass=ON
  Error: Invalid input!
  Usage:
  set luntrespass={on|off} [array_id=ID|vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}]
                                         --  Set the LUN trespass switch.
                                         --  Default is on.
  [1]
  $ refusals <<'EOF'
  > set workingmode=01
  > set workingmode=+1
  > set workingmode
  > set luntrespass=yes
  > set luntrespass=1
  > set loadbalancemode=fastest
  > set iosuspensiontime=2592001
  > set lb_io_threshold=0
  > set max_io_retry_timeout=0
  > set workingmode=1 vlun_id=0-16384
  > set workingmode=1 vlun_id=5-5
  > set workingmode=1 vlun_id=
  > set workingmode=1 path_id=1
  > set workingmode=1 vlun_id=1 extra
  > EOF
  [1] set workingmode=01: Error: Invalid input! | <workingmode usage>
  [1] set workingmode=+1: Error: Invalid input! | <workingmode usage>
  [1] set workingmode: Error: Invalid input! | <workingmode usage>
  [1] set luntrespass=yes: Error: Invalid input! | <trespass usage>
  [1] set luntrespass=1: Error: Invalid input! | <trespass usage>
  [1] set loadbalancemode=fastest: Error: Invalid input! | Usage: | set loadbalancemode={round-robin|min-queue-depth|min-task} [array_id=ID|vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}] |                                        --  Set the load balance mode. |                                        --  Default is min-queue-depth, which is recommendatory.
  [1] set iosuspensiontime=2592001: Error: Invalid input! | Usage: | set iosuspensiontime=<time> [array_id=ID|vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}] |                                        --  Set the I/O suspension time. |                                        --  time is in the range 0-2592000, unit is second. |                                        --  Default is 60.
  [1] set lb_io_threshold=0: Error: Invalid input! | Usage: | set lb_io_threshold=<number> [array_id=ID|vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}] |                                        --  Set the number of I/Os sent on one path before switching to the next. |                                        --  number is in the range 1-10000. |                                        --  Default is 100.
  [1] set max_io_retry_timeout=0: Error: Invalid input! | Usage: | set max_io_retry_timeout=<time> [array_id=ID|vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}] |                                        --  Set the maximum I/O retry timeout. |                                        --  time is in the range 1-2592000, unit is second. |                                        --  Default is 1800.
  [1] set workingmode=1 vlun_id=0-16384: Error: Invalid input! | <workingmode usage>
  [1] set workingmode=1 vlun_id=5-5: Error: Invalid input! | <workingmode usage>
  [1] set workingmode=1 vlun_id=: Error: Invalid input! | <workingmode usage>
  [1] set workingmode=1 path_id=1: Error: Invalid input! | <workingmode usage>
  [1] set workingmode=1 vlun_id=1 extra: Error: Invalid input! | <workingmode usage>
  $ cmp "$cfg" before.xml && echo same file; wc -l < "$CVADM_ROOT/sim/requests.log"; operlog | cmp - before.log && echo no log line
  same file
  0
  no log line
