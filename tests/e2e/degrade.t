The path degradation settings: each checked against its range, told to the
driver, saved in the user configuration and written to the operation log.

  $ . "$TESTDIR/lib.sh"
  $ cfg="$CVADM_ROOT/etc/user_cfg.xml"
  $ log="$CVADM_ROOT/opt/Corvane/log"
  $ printf 0 > "$log/serial_oper"
  $ item() { grep -o "<$1>[^<]*</$1>" "$cfg"; }

Whether the driver holds what the file holds, item by item:

  $ agree() {
  >   /usr/bin/python3 - "$CVADM_ROOT/sim/state.json" "$cfg" <<'EOF'
  > import json, sys, xml.etree.ElementTree as ET
  > told = json.load(open(sys.argv[1])).get("user_config", {}).get("common", {})
  > saved = {e.tag: e.text or "" for e in ET.parse(sys.argv[2]).getroot().find("common")}
  > differ = sorted(k for k in told if saved.get(k) != told[k])
  > print("differ: %s" % differ if differ else "the file holds the %d items the driver was told" % len(told))
  > EOF
  > }

Every setting at the bottom and at the top of its range is taken and
stored; one step outside (and a signed number) is refused with the
setting's own usage, the same for each refused value of a row (its third
line is shown), and leaves the file as it was. The three keywords ending in
"_recovery_time" are kept under items ending in "_recover_time":

  $ while read keyword name low high refused; do
  >   stored=
  >   for value in $low $high; do
  >     cv set $keyword=$value > out.txt || echo "[$?] $keyword=$value"
  >     test "$(cat out.txt)" = "Succeeded in executing the command." || cat out.txt
  >     stored="$stored $(item $name)"
  >   done
  >   echo "${stored# }"
  >   cp "$cfg" before.xml; codes=
  >   for value in $refused; do
  >     cv set $keyword=$value > out.txt; codes="$codes[$?] "
  >     test -e first.txt && { cmp -s out.txt first.txt || cat out.txt; } || mv out.txt first.txt
  >   done
  >   echo "$codes$(sed -n 3p first.txt)"; rm first.txt
  >   cmp -s "$cfg" before.xml || echo "$keyword: the file changed"
  > done <<'EOF'
  > tod_time tod_time 60 2592000 59 2592001 +600
  > tod_threshold tod_threshold 0 65535 -1 65536
  > tod_recovery_time tod_recover_time 1800 2592000 1799 2592001
  > ied_time ied_time 60 2592000 59 2592001
  > ied_min_io ied_min_io 5000 65535 4999 65536
  > ied_threshold ied_threshold 0 100 -1 101
  > ied_recovery_time ied_recover_time 1800 2592000 1799 2592001
  > ifd_time ifd_time 60 2592000 59 2592001
  > ifd_threshold ifd_threshold 0 65535 -1 65536
  > ifd_recovery_time ifd_recover_time 60 2592000 59 2592001
  > hld_time hld_time 60 18000 59 18001
  > hld_threshold hld_threshold 0 65535 -1 65536
  > hld_recovery_time hld_recover_time 60 2592000 59 2592001
  > sdd_threshold sdd_threshold 100 60000 99 60001
  > sdd_recovery_time sdd_recover_time 1 2592000 0 2592001
  > EOF
  <tod_time>60</tod_time> <tod_time>2592000</tod_time>
  [1] [1] [1] set tod_time=<time>                    --  Set I/O timeout degrade time.
  <tod_threshold>0</tod_threshold> <tod_threshold>65535</tod_threshold>
  [1] [1] set tod_threshold=<number>             --  Set I/O timeout degrade threshold.
  <tod_recover_time>1800</tod_recover_time> <tod_recover_time>2592000</tod_recover_time>
  [1] [1] set tod_recovery_time=<time>           --  Set I/O timeout degrade recovery time.
  <ied_time>60</ied_time> <ied_time>2592000</ied_time>
  [1] [1] set ied_time=<time>                    --  Set intermittent I/O error degrade time.
  <ied_min_io>5000</ied_min_io> <ied_min_io>65535</ied_min_io>
  [1] [1] set ied_min_io=<number>                --  Set the minimum I/O count of intermittent I/O error degrade.
  <ied_threshold>0</ied_threshold> <ied_threshold>100</ied_threshold>
  [1] [1] set ied_threshold=<ratio>              --  Set intermittent I/O error degrade threshold.
  <ied_recover_time>1800</ied_recover_time> <ied_recover_time>2592000</ied_recover_time>
  [1] [1] set ied_recovery_time=<time>           --  Set intermittent I/O error degrade recovery time.
  <ifd_time>60</ifd_time> <ifd_time>2592000</ifd_time>
  [1] [1] set ifd_time=<time>                    --  Set intermittent fault degrade time.
  <ifd_threshold>0</ifd_threshold> <ifd_threshold>65535</ifd_threshold>
  [1] [1] set ifd_threshold=<number>             --  Set intermittent fault degrade threshold.
  <ifd_recover_time>60</ifd_recover_time> <ifd_recover_time>2592000</ifd_recover_time>
  [1] [1] set ifd_recovery_time=<time>           --  Set intermittent fault degrade recovery time.
  <hld_time>60</hld_time> <hld_time>18000</hld_time>
  [1] [1] set hld_time=<time>                    --  Set high latency degrade time.
  <hld_threshold>0</hld_threshold> <hld_threshold>65535</hld_threshold>
  [1] [1] set hld_threshold=<time>               --  Set high latency degrade threshold.
  <hld_recover_time>60</hld_recover_time> <hld_recover_time>2592000</hld_recover_time>
  [1] [1] set hld_recovery_time=<time>           --  Set high latency degrade recovery time.
  <sdd_threshold>100</sdd_threshold> <sdd_threshold>60000</sdd_threshold>
  [1] [1] set sdd_threshold=<time>               --  set sensitive delayed degraded threshold.
  <sdd_recover_time>1</sdd_recover_time> <sdd_recover_time>2592000</sdd_recover_time>
  [1] [1] set sdd_recovery_time=<time>           --  set sensitive delayed degraded recovery time.

Each change reached the driver first, then the file, and left its line
(the lines of the top values shown; those of the bottom values differ only
in serial and value, and record success too); the refusals reached
neither:

  $ grep -c '^nr=70 .* result=1024 ' "$CVADM_ROOT/sim/requests.log" && wc -l < "$CVADM_ROOT/sim/requests.log"
  30
  30
  $ agree
  the file holds the 15 items the driver was told
  $ operlog | awk 'NR % 2 == 0'
  [2] [CLI] [1] [1396789544] [set tod_time=2592000] [Set io timeout degrade time 2592000 s] [1]
  [4] [CLI] [1] [1396789545] [set tod_threshold=65535] [Set io timeout degrade threshold 65535 times] [1]
  [6] [CLI] [1] [1396789546] [set tod_recovery_time=2592000] [Set io timeout degrade recovery time 2592000 s] [1]
  [8] [CLI] [1] [1396789547] [set ied_time=2592000] [Set io intermittent error degrade time 2592000 s] [1]
  [10] [CLI] [1] [1396789548] [set ied_min_io=65535] [Set io intermittent error degrade min io count 65535] [1]
  [12] [CLI] [1] [1396789549] [set ied_threshold=100] [Set io intermittent error degrade threshold 100] [1]
  [14] [CLI] [1] [1396789550] [set ied_recovery_time=2592000] [Set io intermittent error degrade recovery time 2592000 s] [1]
  [16] [CLI] [1] [1396789551] [set ifd_time=2592000] [Set io intermittent fault degrade time 2592000 s] [1]
  [18] [CLI] [1] [1396789552] [set ifd_threshold=65535] [Set io intermittent fault degrade threshold 65535 times] [1]
  [20] [CLI] [1] [1396789553] [set ifd_recovery_time=2592000] [Set io intermittent fault degrade recovery time 2592000 s] [1]
  [22] [CLI] [1] [1396789556] [set hld_time=18000] [Set high latency degraded time 18000 s] [1]
  [24] [CLI] [1] [1396789557] [set hld_threshold=65535] [Set high latency degraded threshold 65535 ms] [1]
  [26] [CLI] [1] [1396789558] [set hld_recovery_time=2592000] [Set high latency degraded recovery time 2592000 s] [1]
  [28] [CLI] [1] [1396789600] [set sdd_threshold=60000] [Set I/O sensitive delayed degrade threshold time 60000 ms] [1]
  [30] [CLI] [1] [1396789601] [set sdd_recovery_time=2592000] [Set I/O sensitive delayed degrade recovery time 2592000 s] [1]
  $ operlog | awk 'NR % 2 && $NF == "[1]"' | wc -l
  15

The whole texts: the usage of the row, and the words of their own of the
sensitive-delay settings. After the first, only the row is shown; the two
lines above it are checked to be the same:

  $ cp "$cfg" "$PWD/before.xml"; : > "$CVADM_ROOT/sim/requests.log"
  $ cvu set tod_recovery_time=1799
  Error: Invalid input!
  Usage:
  set tod_recovery_time=<time>           --  Set I/O timeout degrade recovery time.
                                         --  time is in the range 1800-2592000, unit is second.
                                         --  Default is 1800.
  [1]
  $ for words in ied_threshold=20.5 sdd_threshold=99 sdd_recovery_time=0 hld_time=4294967296; do
  >   cv set $words > out.txt; echo "[$?] $words"
  >   head -n 2 out.txt | cmp -s - <(printf 'Error: Invalid input!\nUsage:\n') || head -n 2 out.txt
  >   tail -n +3 out.txt
  > done
  [1] ied_threshold=20.5
  set ied_threshold=<ratio>              --  Set intermittent I/O error degrade threshold.
                                         --  ratio is in the range 0-100, unit is percent.
                                         --  Default is 20.
  [1] sdd_threshold=99
  set sdd_threshold=<time>               --  set sensitive delayed degraded threshold.
                                         --  time is in the range 100~60000, unit is ms.
                                         --  Default is 30000.
  [1] sdd_recovery_time=0
  set sdd_recovery_time=<time>           --  set sensitive delayed degraded recovery time.
                                         --  time is in the range 1~2592000, unit is s.
                                         --  Default is 120.
  [1] hld_time=4294967296
  set hld_time=<time>                    --  Set high latency degrade time.
                                         --  time is in the range 60-18000, unit is second.
                                         --  Default is 300.

A missing value, a missing "=" or a second word gets the short usage:

  $ cvu set tod_time
  Error: Invalid input!
  Usage:
             --set tod_time=<time>
  [1]
  $ refusals <<'EOF'
  > set ied_threshold=
  > set ied_min_io=5000 extra
  > set ifd_threshold==3
  > EOF
  [1] set ied_threshold=: Error: Invalid input! | Usage: |            --set ied_threshold=<ratio>
  [1] set ied_min_io=5000 extra: Error: Invalid input! | Usage: |            --set ied_min_io=<number>
  [1] set ifd_threshold==3: Error: Invalid input! | Usage: |            --set ifd_threshold=<number>
  $ cmp "$cfg" "$PWD/before.xml" && wc -c < "$CVADM_ROOT/sim/requests.log"
  0

The notify request of one change, field by field:

  $ cv set ied_threshold=25
  Succeeded in executing the command.
  $ notified
  nr=70 result=1024 size=140 type=100 instance='' count=1 item=ied_threshold value=25
  other bytes zero: True
  $ item ied_threshold
  <ied_threshold>25</ied_threshold>

A driver that refuses the change keeps it out of the file; the line records
the failure:

  $ cp "$cfg" "$PWD/before.xml"
  $ echo "70 code=1031" > "$CVADM_ROOT/sim/faults"
  $ cvu set tod_time=1200
  Failed to execute the command due to internal errors.
  [1]
  $ notified
  nr=70 result=1031 size=140 type=100 instance='' count=1 item=tod_time value=1200
  other bytes zero: True
  $ echo "70 refuse" > "$CVADM_ROOT/sim/faults"
  $ cvu set hld_threshold=2000
  Failed to execute the command due to internal errors.
  [1]
  $ rm "$CVADM_ROOT/sim/faults"
  $ cmp "$cfg" "$PWD/before.xml" && item tod_time && item hld_threshold
  <tod_time>2592000</tod_time>
  <hld_threshold>65535</hld_threshold>
  $ agree
  the file holds the 15 items the driver was told
  $ operlog | tail -n 3
  [31] [CLI] [1] [1396789549] [set ied_threshold=25] [Set io intermittent error degrade threshold 25] [1]
  [32] [CLI] [1] [1396789544] [set tod_time=1200] [Set io timeout degrade time 1200 s] [0]
  [33] [CLI] [1] [1396789557] [set hld_threshold=2000] [Set high latency degraded threshold 2000 ms] [0]

Setting the value already stored still tells the driver and succeeds:

  $ cv set ied_threshold=25 > /dev/null && notified | sed -n 1p
  nr=70 result=1024 size=140 type=100 instance='' count=1 item=ied_threshold value=25

Without the serial number file the host keeps no operation log: the change
is made and no line is written:

  $ rm "$log/serial_oper"
  $ lines=$(wc -l < "$log/oper_log")
  $ cv set ifd_threshold=7; echo "[$?]"
  Succeeded in executing the command.
  [0]
  $ item ifd_threshold
  <ifd_threshold>7</ifd_threshold>
  $ test "$(wc -l < "$log/oper_log")" = "$lines" && test ! -e "$log/serial_oper"
  $ echo 1000000000 > "$log/serial_oper"
  $ cv set ifd_threshold=8
  Succeeded in executing the command.
  $ tail -n 1 "$log/oper_log" | cut -d' ' -f1
  [100000001]
  $ cat "$log/serial_oper"
  1000000010

A full line: serial, date, user, source, level, event, command, English,
Chinese (GB2312), result:

  $ tail -n 1 "$log/oper_log" | sed -E 's/^\[[0-9]+\] \[[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9:]{8}\] \[[a-z0-9_]+\]/[N] [DATE] [USER]/; s/\] \[[^]]*\] \[1\]$/] [CHINESE] [1]/'
  [N] [DATE] [USER] [CLI] [1] [1396789552] [set ifd_threshold=8] [Set io intermittent fault degrade threshold 8 times] [CHINESE] [1]
  $ chinese=$(tail -n 1 "$log/oper_log" | awk -F'\\] \\[' '{print $9}' | iconv -f GB2312 -t UTF-8)
  $ test "$chinese" = "设置I/O间歇性故障降级阈值为8次" && echo same
  same

Without a configuration file the change cannot be saved; the driver is not
told:

  $ mv "$cfg" "$PWD/saved.xml"
  $ : > "$CVADM_ROOT/sim/requests.log"
  $ cvu set tod_time=900
  cvadm: the configuration file */root/etc/user_cfg.xml is missing or cannot be parsed. (glob)
  Failed to execute the command due to internal errors.
  [1]
  $ wc -c < "$CVADM_ROOT/sim/requests.log"
  0
  $ operlog | tail -n 1
  [100000002] [CLI] [1] [1396789544] [set tod_time=900] [Set io timeout degrade time 900 s] [0]
  $ : > "$cfg"
  $ cvu set tod_time=900
  cvadm: the configuration file */root/etc/user_cfg.xml is missing or cannot be parsed. (glob)
  Failed to execute the command due to internal errors.
  [1]
  $ mv "$PWD/saved.xml" "$cfg"

genprkey records its line too:

  $ cv genprkey | wc -c
  21
  $ operlog | tail -n 1
  [100000004] [CLI] [1] [1396789521] [set genprkey] [Generate PR key] [1]
