`show io_count`, `show io_latency`, `clear io_count` and the two switch
displays on the incident topology, whose counters are: disk 0 (VLUN 0)
error I/O 11, error commands 12, queued I/O 13, queued commands 14,
latencies 7 / 40 / 900 over 120 samples; disk 5 (VLUN 8) 1, 2, 3, 4, 5 / 6
/ 100 over 7, its paths 9 and 6 (listed in that order) with their own,
path 6 without samples; disk 6 (VLUN 5) a 12-digit error count, no samples.

  $ export CVSIM_TOPOLOGY="$TESTDIR/../../sim/topology/incident.json"
  $ . "$TESTDIR/lib.sh"
  $ printf 0 > "$CVADM_ROOT/opt/Corvane/log/serial_oper"
  $ reqs="$CVADM_ROOT/sim/requests.log"

Argument refusals send nothing:

  $ : > "$reqs"
  $ refusals <<'EOF'
  > show io_count vlun_id=1,2,3,4,5,6,7,8,9
  > show io_count vlun_id=
  > show io_count vlun_id=a
  > show io_count array_id=1
  > show io_count vlun_id=1 vlun_id=2
  > show io_latency vlun_id=1,2,3,4,5,6,7,8,9
  > show io_latency id=1
  > show alarmenable on
  > show path_reliability_enable x
  > clear io_count now
  > EOF
  [1] show io_count vlun_id=1,2,3,4,5,6,7,8,9: Error: You can't input more than 8 ids | Error: Invalid input! | Usage: |     -- show io_count [vlun_id={<ID>|<ID1,ID2,...>}]
  [1] show io_count vlun_id=: Error: Invalid input! | Usage: |     -- show io_count [vlun_id={<ID>|<ID1,ID2,...>}]
  [1] show io_count vlun_id=a: Error: Invalid input --- a | Error: Invalid input! | Usage: |     -- show io_count [vlun_id={<ID>|<ID1,ID2,...>}]
  [1] show io_count array_id=1: Error: Invalid input! | Usage: |     -- show io_count [vlun_id={<ID>|<ID1,ID2,...>}]
  [1] show io_count vlun_id=1 vlun_id=2: Error: Invalid input! | Usage: |     -- show io_count [vlun_id={<ID>|<ID1,ID2,...>}]
  [1] show io_latency vlun_id=1,2,3,4,5,6,7,8,9: Error: You can't input more than 8 ids | Error: Invalid input! | Usage: |     -- show io_latency [vlun_id={<ID>|<ID1,ID2,...>}]
  [1] show io_latency id=1: Error: Invalid input! | Usage: |     -- show io_latency [vlun_id={<ID>|<ID1,ID2,...>}]
  [1] show alarmenable on: Error: Invalid input! | Usage: |     -- show alarmenable
  [1] show path_reliability_enable x: Error: Invalid input! | Usage: |     -- show path_reliability_enable
  [1] clear io_count now: Error: Invalid input! | Usage: |     -- clear io_count
  $ wc -c < "$reqs"
  0

Every VLUN, one whole-disk row each by VLUN ID; the count columns show
error I/O, queued I/O, error command, queued command (payload offsets 16,
32, 24, 40); the average is sum / samples, 0 without samples:

  $ cv show io_count; echo "[$?]"
  ----------------------------------------------------------------------------------------------------
   Vlun ID    Disk Name    Error I/O Count  Queue I/O Count  Error Command Count  Queue Command Count 
      0     prod_db_data         11               13                 12                   14          
      1      prod_db_log          0                0                  0                    0          
      2     prod_archive          0                0                  0                    0          
      3      metro_vol01          0                0                  0                    0          
      3      metro_vol01          0                0                  0                    0          
      4       vvol_pe01           0                0                  0                    0          
      5     backup_pool02   123456789012           0                  0                    0          
      6       pe_shadow           0                0                  0                    0          
      7      mig_src_vol          0                0                  0                    0          
      7      mig_dst_vol          0                0                  0                    0          
      8     backup_pool01         1                3                  2                    4          
      9      siteb_share          0                0                  0                    0          
     10      legacy_vol           0                0                  0                    0          
     11      legacy_vol2          0                0                  0                    0          
  ----------------------------------------------------------------------------------------------------
  [0]
  $ cv show io_latency; echo "[$?]"
  ----------------------------------------------------------------------------------
   Vlun ID    Disk Name    Latest I/O Latency  Max I/O Latency  Average I/O Latency 
      0     prod_db_data           7                 40                  7          
      1      prod_db_log           0                  0                  0          
      2     prod_archive           0                  0                  0          
      3      metro_vol01           0                  0                  0          
      3      metro_vol01           0                  0                  0          
      4       vvol_pe01            0                  0                  0          
      5     backup_pool02          3                  9                  0          
      6       pe_shadow            0                  0                  0          
      7      mig_src_vol           0                  0                  0          
      7      mig_dst_vol           0                  0                  0          
      8     backup_pool01          5                  6                 14          
      9      siteb_share           0                  0                  0          
     10      legacy_vol            0                  0                  0          
     11      legacy_vol2           0                  0                  0          
  ----------------------------------------------------------------------------------
  [0]

Chosen VLUNs in the order given, each its own table of its logical paths
sorted by path ID; a VLUN that does not exist is named and skipped:

  $ cv show io_count vlun_id=8,55,0; echo "[$?]"
  -------------------------------------------------------------------------------------------------------------
   Vlun ID    Disk Name    Path ID  Error I/O Count  Queue I/O Count  Error Command Count  Queue Command Count 
      8     backup_pool01     6           61               63                 62                   64          
      8     backup_pool01     7            0                0                  0                    0          
      8     backup_pool01     8            0                0                  0                    0          
      8     backup_pool01     9           91               93                 92                   94          
  -------------------------------------------------------------------------------------------------------------
  
  The VLUN whose ID is 55 does not exist.
  ------------------------------------------------------------------------------------------------------------
   Vlun ID   Disk Name    Path ID  Error I/O Count  Queue I/O Count  Error Command Count  Queue Command Count 
      0     prod_db_data     0            0                0                  0                    0          
      0     prod_db_data     1            0                0                  0                    0          
      0     prod_db_data     2            0                0                  0                    0          
      0     prod_db_data     3            0                0                  0                    0          
      0     prod_db_data     4            0                0                  0                    0          
      0     prod_db_data     5            0                0                  0                    0          
      0     prod_db_data    18            0                0                  0                    0          
  ------------------------------------------------------------------------------------------------------------
  
  [0]
  $ cv show io_latency vlun_id=8; echo "[$?]"
  -------------------------------------------------------------------------------------------
   Vlun ID    Disk Name    Path ID  Latest I/O Latency  Max I/O Latency  Average I/O Latency 
      8     backup_pool01     6             65                66                  0          
      8     backup_pool01     7             0                  0                  0          
      8     backup_pool01     8             0                  0                  0          
      8     backup_pool01     9             95                96                 97          
  -------------------------------------------------------------------------------------------
  
  [0]
  $ cv show io_latency vlun_id=5000; echo "[$?]"
  The VLUN whose ID is 5000 does not exist.
  [0]

The requests 0x68 for the paths of one VLUN (disk, path, scope, the flag
answered):

  $ : > "$reqs"; cv show io_count vlun_id=8 > /dev/null
  $ /usr/bin/python3 -c '
  > import re, sys
  > for line in open(sys.argv[1]):
  >     m = re.search(r"^nr=104 .* result=(\d+) in=([0-9a-f]*) out=([0-9a-f]*)", line)
  >     if m:
  >         b, o = bytes.fromhex(m.group(2)), bytes.fromhex(m.group(3))
  >         u32 = lambda d, off: int.from_bytes(d[off:off + 4], "little")
  >         print("disk=%d path=%d scope=%d flag out=%d size=%d" % (u32(b, 0), u32(b, 4), u32(b, 12), u32(o, 8), len(b)))' "$reqs"
  disk=5 path=6 scope=1 flag out=1 size=80
  disk=5 path=7 scope=1 flag out=1 size=80
  disk=5 path=8 scope=1 flag out=1 size=80
  disk=5 path=9 scope=1 flag out=1 size=80

Clearing the counters: one request 0x69, the log line, and every counter
reads 0 afterwards:

  $ : > "$reqs"; cv clear io_count; echo "[$?]"; requests; operlog
  Succeeded in executing the command.
  [0]
  nr=105 code=0x80504d69 size=80 result=1024
  [1] [CLI] [1] [1396789590] [clear io_count] [Clear I/O count] [1]
  $ cv show io_count vlun_id=8
  -------------------------------------------------------------------------------------------------------------
   Vlun ID    Disk Name    Path ID  Error I/O Count  Queue I/O Count  Error Command Count  Queue Command Count 
      8     backup_pool01     6            0                0                  0                    0          
      8     backup_pool01     7            0                0                  0                    0          
      8     backup_pool01     8            0                0                  0                    0          
      8     backup_pool01     9            0                0                  0                    0          
  -------------------------------------------------------------------------------------------------------------
  

The switches (both on until `set` changes them):

  $ cv show alarmenable; cv show path_reliability_enable; requests | tail -n 2
  alarmenable: on
  path reliabilityenable: on
  nr=98 code=0x80044d62 size=4 result=1024
  nr=99 code=0x80044d63 size=4 result=1024
