`show iostat`: live rates per VLUN and per array, CSV reports, and the
refusals that come before any sampling. The topology gives constant loads,
and the fast clock turns each one-second sleep into an advance of the
model's clock, so every figure below follows from the loads alone.

  $ python3 - "$TESTDIR/../../sim/topology/default.json" > topo.json <<'PY'
  > import json, sys
  > d = json.load(open(sys.argv[1]))
  > d["io"] = {
  >     "logical": [
  >         {"disk": 0, "path": 0, "reads": 10, "writes": 4, "read_bytes": 4096, "write_bytes": 8192,
  >          "read_ms": 2, "write_ms": 5},
  >         {"disk": 0, "path": 1, "reads": 3, "read_bytes": 1000, "read_ms": 7}],
  >     "physical": [
  >         {"path": 6, "reads": 100, "read_bytes": 512, "read_ms": 1},
  >         {"path": 7, "writes": 50, "write_bytes": 4096, "write_ms": 3}]}
  > json.dump(d, sys.stdout)
  > PY
  $ export CVSIM_TOPOLOGY="$PWD/topo.json" TZ=UTC
  $ . "$TESTDIR/lib.sh"
  $ perf="$CVADM_ROOT/opt/Corvane/log/perf_log"
  $ printf 0 > "$CVADM_ROOT/opt/Corvane/log/serial_oper"

Refusals, each before any sampling and without a file:

  $ mkdir -p "$CVADM_ROOT/reports"
  $ touch "$CVADM_ROOT/reports/old.csv"
  $ refusals <<'EOF'
  > show iostat
  > show iostat id=0
  > show iostat vlun_id=0 interval=0
  > show iostat vlun_id=0 interval=61
  > show iostat vlun_id=0 interval=x
  > show iostat vlun_id=0,1,2,3,4
  > show iostat vlun_id=1,2,3,4,5,6,7,8,9
  > show iostat vlun_id=16384
  > show iostat array_id=77
  > show iostat array_id=1 type=all
  > show iostat vlun_id=0 type=odd
  > show iostat vlun_id=0 duration=60
  > show iostat vlun_id=0 file_name=r archive_time=900
  > show iostat vlun_id=0 file_name=r archive_time=x
  > show iostat vlun_id=0 file_name=r duration=59
  > show iostat vlun_id=0 file_name=r duration=259201
  > show iostat vlun_id=0 file_name=/tmp/a|b
  > show iostat vlun_id=0 file_name=a*b
  > show iostat vlun_id=0 file_name=/reports/
  > show iostat vlun_id=0 file_name=/missing/r
  > show iostat vlun_id=0 file_name=/reports/old
  > EOF
  [1] show iostat: Error: Invalid option is NULL!
  [1] show iostat id=0: Error: Invalid option --- {id=0}!
  [1] show iostat vlun_id=0 interval=0: The time interval cannot be 0.
  [1] show iostat vlun_id=0 interval=61: The time interval cannot be longer than 60.
  [1] show iostat vlun_id=0 interval=x: Error: Invalid input! | Usage: | show iostat vlun_id=<ID1,ID2,...> [type=<all|dualsite|migration>] [interval=<time>] [file_name=<name> [archive_time=<archive_time>] [duration=<duration>]] |                                        --  Display the specific vlun's iostate. | show iostat array_id=<ID1,ID2,...> [interval=<time>] [file_name=<name> [archive_time=<archive_time>] [duration=<duration>]] |                                        --  Display all pathes's iostate of the specific array. |                                        --  interval is in the range 1-60, unit is second. Default is 1. |                                        --  file_name saves the statistics into the report file <name>.csv. |                                        --  archive_time can be 5|60|120|300|600|1800|3600, unit is second. Default is 60. |                                        --  duration is in the range 60-259200, unit is second. Default is 900. |                                        --  Press Ctrl+C to stop.
  [1] show iostat vlun_id=0,1,2,3,4: A maximum of 4 disk arrays or LUNs can be monitored at the same time.
  [1] show iostat vlun_id=1,2,3,4,5,6,7,8,9: Error: You can't input more than 8 ids
  [1] show iostat vlun_id=16384: Error: 16384 is out of range
  [1] show iostat array_id=77: The disk array whose ID is 77 does not exist.
  [1] show iostat array_id=1 type=all: Error: Invalid input! | Usage: | show iostat vlun_id=<ID1,ID2,...> [type=<all|dualsite|migration>] [interval=<time>] [file_name=<name> [archive_time=<archive_time>] [duration=<duration>]] |                                        --  Display the specific vlun's iostate. | show iostat array_id=<ID1,ID2,...> [interval=<time>] [file_name=<name> [archive_time=<archive_time>] [duration=<duration>]] |                                        --  Display all pathes's iostate of the specific array. |                                        --  interval is in the range 1-60, unit is second. Default is 1. |                                        --  file_name saves the statistics into the report file <name>.csv. |                                        --  archive_time can be 5|60|120|300|600|1800|3600, unit is second. Default is 60. |                                        --  duration is in the range 60-259200, unit is second. Default is 900. |                                        --  Press Ctrl+C to stop.
  [1] show iostat vlun_id=0 type=odd: Error: Invalid input! | Usage: | show iostat vlun_id=<ID1,ID2,...> [type=<all|dualsite|migration>] [interval=<time>] [file_name=<name> [archive_time=<archive_time>] [duration=<duration>]] |                                        --  Display the specific vlun's iostate. | show iostat array_id=<ID1,ID2,...> [interval=<time>] [file_name=<name> [archive_time=<archive_time>] [duration=<duration>]] |                                        --  Display all pathes's iostate of the specific array. |                                        --  interval is in the range 1-60, unit is second. Default is 1. |                                        --  file_name saves the statistics into the report file <name>.csv. |                                        --  archive_time can be 5|60|120|300|600|1800|3600, unit is second. Default is 60. |                                        --  duration is in the range 60-259200, unit is second. Default is 900. |                                        --  Press Ctrl+C to stop.
  [1] show iostat vlun_id=0 duration=60: Error: Invalid input! | Usage: | show iostat vlun_id=<ID1,ID2,...> [type=<all|dualsite|migration>] [interval=<time>] [file_name=<name> [archive_time=<archive_time>] [duration=<duration>]] |                                        --  Display the specific vlun's iostate. | show iostat array_id=<ID1,ID2,...> [interval=<time>] [file_name=<name> [archive_time=<archive_time>] [duration=<duration>]] |                                        --  Display all pathes's iostate of the specific array. |                                        --  interval is in the range 1-60, unit is second. Default is 1. |                                        --  file_name saves the statistics into the report file <name>.csv. |                                        --  archive_time can be 5|60|120|300|600|1800|3600, unit is second. Default is 60. |                                        --  duration is in the range 60-259200, unit is second. Default is 900. |                                        --  Press Ctrl+C to stop.
  [1] show iostat vlun_id=0 file_name=r archive_time=900: archive_time specifies the performance data collection interval in seconds. The value must be 5|60|120|300|1800|3600.
  [1] show iostat vlun_id=0 file_name=r archive_time=x: archive_time specifies the performance data collection interval in seconds. The value must be 5|60|120|300|1800|3600.
  [1] show iostat vlun_id=0 file_name=r duration=59: duration specifies the performance monitoring period in seconds. The value is in the range 60-259200.
  [1] show iostat vlun_id=0 file_name=r duration=259201: duration specifies the performance monitoring period in seconds. The value is in the range 60-259200.
  [1] show iostat vlun_id=0 file_name=/tmp/a|b: The path or file name contains invalid characters or the path does not exist.
  [1] show iostat vlun_id=0 file_name=a*b: The path or file name contains invalid characters or the path does not exist.
  [1] show iostat vlun_id=0 file_name=/reports/: Please enter the report name.
  [1] show iostat vlun_id=0 file_name=/missing/r: The path or file name contains invalid characters or the path does not exist.
  [1] show iostat vlun_id=0 file_name=/reports/old: Performance report file {/reports/old.csv} already exists.
  $ ls "$CVADM_ROOT/reports"
  old.csv

A full disk is refused before the run:

  $ CVSIM_FREE_KB=184320 cv show iostat vlun_id=0 file_name=/reports/full; echo "[$?]"
  The specified disk space is less than 180M or get disk space failed.
  [1]
  $ ls "$CVADM_ROOT/reports"
  old.csv

Two display intervals of thirty seconds, one report period of sixty, and
the run ends at its duration. VLUN 0 reads 10/s of 4096 bytes
(2 ms) and writes 4/s of 8192 bytes (5 ms) on path 0, and reads 3/s of
1000 bytes (7 ms) on path 1:

  $ export CVSIM_FASTCLOCK=1
  $ cv show iostat vlun_id=0 interval=30 file_name=/reports/v0 archive_time=60 duration=60; echo "[$?]"
  IO Performance Information
                       IOPS                      KB/S                 response time(ms)
              Total   |Read    |Write   Total   |Read    |Write   Total   |Read    |Write
  VLUN 0      17      |13      |4       75      |43      |32      3       |3       |5        
  Lun  Array Dorado-Prod
  Controller 0A
  Path 0     :14      |10      |4       72      |40      |32      2       |2       |5        
  Path 1     :3       |3       |0       3       |3       |0       7       |7       |0        
  Path 2     :0       |0       |0       0       |0       |0       0       |0       |0        
  Path 3     :0       |0       |0       0       |0       |0       0       |0       |0        
  Path 4     :0       |0       |0       0       |0       |0       0       |0       |0        
  Path 5     :0       |0       |0       0       |0       |0       0       |0       |0        
  Path 18    :0       |0       |0       0       |0       |0       0       |0       |0        
  IO Performance Information
                       IOPS                      KB/S                 response time(ms)
              Total   |Read    |Write   Total   |Read    |Write   Total   |Read    |Write
  VLUN 0      17      |13      |4       75      |43      |32      3       |3       |5        
  Lun  Array Dorado-Prod
  Controller 0A
  Path 0     :14      |10      |4       72      |40      |32      2       |2       |5        
  Path 1     :3       |3       |0       3       |3       |0       7       |7       |0        
  Path 2     :0       |0       |0       0       |0       |0       0       |0       |0        
  Path 3     :0       |0       |0       0       |0       |0       0       |0       |0        
  Path 4     :0       |0       |0       0       |0       |0       0       |0       |0        
  Path 5     :0       |0       |0       0       |0       |0       0       |0       |0        
  Path 18    :0       |0       |0       0       |0       |0       0       |0       |0        
  
  [show iostat file_name] has reached the maximum running time.
  [0]
  $ cat "$CVADM_ROOT/reports/v0.csv"
  -                    ,-        ,-           ,-       ,IOPS    ,IOPS    ,IOPS    ,KB/S    ,KB/S    ,KB/S    ,response time(ms) ,response time(ms) ,response time(ms) 
  Time                 ,VlunId   ,Controller  ,PathId  ,Total   ,Read    ,Write   ,Total   ,Read    ,Write   ,Total             ,Read              ,Write             
  [2026-11-18 11:07:40],VLUN    0,-           ,-       ,17      ,13      ,4       ,75      ,43      ,32      ,3                 ,3                 ,5                 
  [2026-11-18 11:07:40],VLUN    0,0A          ,0       ,14      ,10      ,4       ,72      ,40      ,32      ,2                 ,2                 ,5                 
  [2026-11-18 11:07:40],VLUN    0,0B          ,1       ,3       ,3       ,0       ,3       ,3       ,0       ,7                 ,7                 ,0                 
  [2026-11-18 11:07:40],VLUN    0,1A          ,2       ,0       ,0       ,0       ,0       ,0       ,0       ,0                 ,0                 ,0                 
  [2026-11-18 11:07:40],VLUN    0,1B          ,3       ,0       ,0       ,0       ,0       ,0       ,0       ,0                 ,0                 ,0                 
  [2026-11-18 11:07:40],VLUN    0,0A          ,4       ,0       ,0       ,0       ,0       ,0       ,0       ,0                 ,0                 ,0                 
  [2026-11-18 11:07:40],VLUN    0,0B          ,5       ,0       ,0       ,0       ,0       ,0       ,0       ,0                 ,0                 ,0                 
  [2026-11-18 11:07:40],VLUN    0,0A          ,18      ,0       ,0       ,0       ,0       ,0       ,0       ,0                 ,0                 ,0                 

The same file again is refused:

  $ cv show iostat vlun_id=0 file_name=/reports/v0; echo "[$?]"
  Performance report file {/reports/v0.csv} already exists.
  [1]

An array's physical paths, written to the default directory:

  $ cv show iostat array_id=1 interval=60 file_name=a1 archive_time=60 duration=60; echo "[$?]"
  IO Performance Information
                       IOPS                      KB/S                 response time(ms)
              Total   |Read    |Write   Total   |Read    |Write   Total   |Read    |Write
  Array 1     150     |100     |50      255     |51      |204     1       |1       |3        
  Phypath 6  :100     |100     |0       51      |51      |0       1       |1       |0        
  Phypath 7  :50      |0       |50      204     |0       |204     3       |0       |3        
  Phypath 8  :0       |0       |0       0       |0       |0       0       |0       |0        
  Phypath 9  :0       |0       |0       0       |0       |0       0       |0       |0        
  Phypath 16 :0       |0       |0       0       |0       |0       0       |0       |0        
  
  [show iostat file_name] has reached the maximum running time.
  [0]
  $ cat "$perf/a1.csv"
  -                    ,-        ,-           ,-       ,IOPS    ,IOPS    ,IOPS    ,KB/S    ,KB/S    ,KB/S    ,response time(ms) ,response time(ms) ,response time(ms) 
  Time                 ,ArrayID  ,Controller  ,PathId  ,Total   ,Read    ,Write   ,Total   ,Read    ,Write   ,Total             ,Read              ,Write             
  [2026-11-18 11:07:40],Array   1,-           ,-       ,%8-llu,150     ,100     ,50      ,255     ,51      ,204               ,1                 ,1                 
  [2026-11-18 11:07:40],Array   1,0           ,6       ,100     ,100     ,0       ,51      ,51      ,0       ,1                 ,1                 ,0                 
  [2026-11-18 11:07:40],Array   1,1           ,7       ,50      ,0       ,50      ,204     ,0       ,204     ,3                 ,0                 ,3                 
  [2026-11-18 11:07:40],Array   1,0           ,8       ,0       ,0       ,0       ,0       ,0       ,0       ,0                 ,0                 ,0                 
  [2026-11-18 11:07:40],Array   1,1           ,9       ,0       ,0       ,0       ,0       ,0       ,0       ,0                 ,0                 ,0                 
  [2026-11-18 11:07:40],Array   1,0           ,16      ,0       ,0       ,0       ,0       ,0       ,0       ,0                 ,0                 ,0                 

archive_time=600 is accepted; a run shorter than one report period writes
no row and leaves no file:

  $ cv show iostat array_id=1 interval=60 file_name=a2 archive_time=600 duration=60 > /dev/null; echo "[$?]"
  [0]
  $ ls "$perf"
  a1.csv

The operation log keeps each file-writing run:

  $ operlog | tail -n 3
  [1] [CLI] [1] [1396789593] [show iostat vlun_id=0 interval=30 file_name=/reports/v0 archive_time=60 duration=60] [Start writing performance data to report] [1]
  [2] [CLI] [1] [1396789593] [show iostat array_id=1 interval=60 file_name=a1 archive_time=60 duration=60] [Start writing performance data to report] [1]
  [3] [CLI] [1] [1396789593] [show iostat array_id=1 interval=60 file_name=a2 archive_time=600 duration=60] [Start writing performance data to report] [1]

Ctrl-C ends the loop and the one-line command exits 0 (the subshell puts
back the default disposition a background job of a script starts without):

  $ unset CVSIM_FASTCLOCK
  $ (trap - INT; exec "$CVADM_SIM" show iostat vlun_id=0 > ctrlc.txt) &
  $ pid=$!
  $ while [ ! -s ctrlc.txt ]; do sleep 0.2; done; kill -INT $pid; wait $pid; echo "[$?]"
  [0]
  $ head -n 3 ctrlc.txt
  IO Performance Information
                       IOPS                      KB/S                 response time(ms)
              Total   |Read    |Write   Total   |Read    |Write   Total   |Read    |Write

At the prompt, Ctrl-C ends the display and the prompt continues:

  $ mkfifo in
  $ (trap - INT; exec "$CVADM_SIM" < in > prompt.txt) &
  $ pid=$!
  $ exec 3> in
  $ echo "show iostat vlun_id=0" >&3
  $ while ! grep -q "^Path 0" prompt.txt; do sleep 0.2; done; kill -INT $pid
  $ echo "show iostat vlun_id=0 interval=0" >&3; echo quit >&3; exec 3>&-
  $ wait $pid; echo "[$?]"
  [0]
  $ grep -v '^VLUN\|^Path\|^ \|^Lun\|^Controller' prompt.txt
  
  Corvane CLI #0 >IO Performance Information
  
  Corvane CLI #1 >The time interval cannot be 0.
  
  Corvane CLI #2 >
