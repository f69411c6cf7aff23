`show vlun` on the default topology: VLUN tables array by array, filtered
by type, and the detail of ordinary VLUNs.

  $ . "$TESTDIR/lib.sh"

Without a type only ordinary VLUNs are listed (a PE-flagged ordinary VLUN
among them); each array has its own table, and the columns grow from one
table to the next. Array 4 hides its controllers and has a VLUN without a
valid device LUN ID.

  $ cv show vlun
  --------------------------------------------------------------------------------------------------------------------------------------
   Vlun ID  Disk      Name                  Lun WWN                 Status     Capacity  Ctrl(Own/Work)  Array Name   Dev Lun ID  
      0     sdb   prod_db_data  62c7f1a10b4c8a10000000000000000b    Normal      2.00TB       0A/0A       Dorado-Prod      11      
      1     sdc   prod_db_log   62c7f1a10b4c8a10000000000000000c    Normal     200.00GB      0B/0B       Dorado-Prod      12      
      2     sdd   prod_archive  62c7f1a10b4c8a10000000000000000d  Unavailable   1.50TB       0A/1A       Dorado-Prod      13      
  --------------------------------------------------------------------------------------------------------------------------------------
  -----------------------------------------------------------------------------------------------------------------------------------------
   Vlun ID  Disk      Name                   Lun WWN                 Status     Capacity  Ctrl(Own/Work)   Array Name    Dev Lun ID  
      5     sdg   backup_pool02  62c7f1a10b5d9b200000000000000002   Degraded     1.50MB        1/1        S5500T-Backup       2      
      6     sdh     pe_shadow    62c7f1a10b5d9b200000000000000009     Fault      4.00MB        1/1        S5500T-Backup       9      
      8     sdj   backup_pool01  62c7f1a10b5d9b200000000000000001    Normal      4.00TB        0/0        S5500T-Backup       1      
  -----------------------------------------------------------------------------------------------------------------------------------------
  -----------------------------------------------------------------------------------------------------------------------------------------
   Vlun ID  Disk      Name                   Lun WWN                 Status     Capacity  Ctrl(Own/Work)   Array Name    Dev Lun ID  
      9     sdk    siteb_share   62c7f1a10b4c8a770000000000000005   Degraded    750.00GB  CTE0.A/CTE0.B    \xb4\xe6\xb4\xa2-SiteB         5       (esc)
  -----------------------------------------------------------------------------------------------------------------------------------------
  -----------------------------------------------------------------------------------------------------------------------------------------
   Vlun ID  Disk      Name                   Lun WWN                 Status     Capacity  Ctrl(Own/Work)   Array Name    Dev Lun ID  
     10     sdl    legacy_vol    62c7f1a10c6e0c300000000000000004     Fault    1100.00GB      --/--        Legacy-2200       --      
     11     sdm    legacy_vol2   62c7f1a10c6e0c300000000000000005     Fault     64.00GB       --/--        Legacy-2200        5      
  -----------------------------------------------------------------------------------------------------------------------------------------

Every type adds rows to the tables above, at the same widths: the
dual-site VLUN 3 appears under both of its arrays, with the member of each;
the migration VLUN 7 likewise.

  $ diff <(cv show vlun) <(cv show vlun type=all) | sed 's/^>/+/'
  5a6,7
  +     3     sde   metro_vol01   62c7f1a10b4c8a10000000000000002a    Normal     500.00GB      1A/1A       Dorado-Prod      42      
  +     4     sdf    vvol_pe01    62c7f1a10b4c8a100000000000000030    Normal    1100.00KB      0A/0A       Dorado-Prod      48      
  10a13
  +     7     sdi    mig_src_vol   62c7f1a10b5d9b200000000000000007    Normal     300.00GB       0/0        S5500T-Backup       7      
  14a18
  +     3     sde    metro_vol01   62c7f1a10b4c8a10000000000000002a    Normal     500.00GB  CTE0.B/CTE0.B    \xb4\xe6\xb4\xa2-SiteB        42       (esc)
  18a23
  +     7     sdi    mig_dst_vol   62c7f1a10b5d9b200000000000000007     Fault     300.00GB      --/--        Legacy-2200        3      

The other filters: PE LUNs (by type, or by the PE flag), dual-site and
migration VLUNs, and chosen arrays in the order given (array 0 after
array 4 as on its own).

  $ cv show vlun type=pe
  ------------------------------------------------------------------------------------------------------------------------------
   Vlun ID  Disk    Name                 Lun WWN               Status  Capacity  Ctrl(Own/Work)  Array Name   Dev Lun ID  
      4     sdf   vvol_pe01  62c7f1a10b4c8a100000000000000030  Normal 1100.00KB      0A/0A       Dorado-Prod      48      
  ------------------------------------------------------------------------------------------------------------------------------
  --------------------------------------------------------------------------------------------------------------------------------
   Vlun ID  Disk    Name                 Lun WWN               Status  Capacity  Ctrl(Own/Work)   Array Name    Dev Lun ID  
      6     sdh   pe_shadow  62c7f1a10b5d9b200000000000000009  Fault    4.00MB        1/1        S5500T-Backup       9      
  --------------------------------------------------------------------------------------------------------------------------------
  $ cv show vlun type=dualsite
  --------------------------------------------------------------------------------------------------------------------------------
   Vlun ID  Disk     Name                  Lun WWN               Status  Capacity  Ctrl(Own/Work)  Array Name   Dev Lun ID  
      3     sde   metro_vol01  62c7f1a10b4c8a10000000000000002a  Normal  500.00GB      1A/1A       Dorado-Prod      42      
  --------------------------------------------------------------------------------------------------------------------------------
  --------------------------------------------------------------------------------------------------------------------------------
   Vlun ID  Disk     Name                  Lun WWN               Status  Capacity  Ctrl(Own/Work)  Array Name   Dev Lun ID  
      3     sde   metro_vol01  62c7f1a10b4c8a10000000000000002a  Normal  500.00GB  CTE0.B/CTE0.B   \xb4\xe6\xb4\xa2-SiteB       42       (esc)
  --------------------------------------------------------------------------------------------------------------------------------
  $ cv show vlun array_id=1 type=migration
  ----------------------------------------------------------------------------------------------------------------------------------
   Vlun ID  Disk     Name                  Lun WWN               Status  Capacity  Ctrl(Own/Work)   Array Name    Dev Lun ID  
      7     sdi   mig_src_vol  62c7f1a10b5d9b200000000000000007  Normal  300.00GB       0/0        S5500T-Backup       7      
  ----------------------------------------------------------------------------------------------------------------------------------
  $ cv show vlun array_id=4,0 > out.txt && head -n 5 out.txt
  --------------------------------------------------------------------------------------------------------------------------------
   Vlun ID  Disk     Name                  Lun WWN               Status  Capacity  Ctrl(Own/Work)  Array Name   Dev Lun ID  
     10     sdl   legacy_vol   62c7f1a10c6e0c300000000000000004  Fault  1100.00GB      --/--       Legacy-2200      --      
     11     sdm   legacy_vol2  62c7f1a10c6e0c300000000000000005  Fault   64.00GB       --/--       Legacy-2200       5      
  --------------------------------------------------------------------------------------------------------------------------------
  $ tail -n +6 out.txt | cmp - <(cv show vlun array_id=0) && echo array 0 as alone
  array 0 as alone
  $ cv show vlun array_id=3,99
  The VLUN does not exist in disk array 3.
  The VLUN does not exist in disk array 99.
  [1]
  $ cv show vlun array_id=2 type=migration
  The VLUN does not exist in disk array 2.
  [1]

Details: an ordinary VLUN with its controllers and paths.

  $ cv show vlun id=0
  =======================================================
                    VLUN#0 Information                   
  =======================================================
  Disk                  : sdb
  Name                  : prod_db_data
  Status                : Normal
  Capacity              : 2.00TB
  Driver                : alua
  Product Name          : Dorado5000 V6
  Vendor Name           : CORVANE
  Owning Controller     : 0A
  Working Controller    : 0A
  Num of Paths          : 7
  LUN WWN               : 62c7f1a10b4c8a10000000000000000b
  Array Name            : Dorado-Prod
  Controller 0A
  Path 0 [3:0:0:1] (sdaa)  : Normal
  Path 4 [4:0:0:1] (sdae)  : Disable
  Path 18 [3:0:8:1] (sdag)  : Potential fault degradation
  Controller 0B
  Path 1 [3:0:1:1] (sdab)  : Normal
  Path 5 [4:0:1:1] (sdaf)  : Disable
  Controller 1A
  Path 2 [3:0:2:1] (sdac)  : I/O timeout degradation
  Controller 1B
  Path 3 [3:0:3:1] (sdad)  : Disable
  Manual IO Suspension  : Off
  -------------------------------------------------------

Other details, in the lines that differ: an unavailable disk (paths read
"Fault" unless disabled); a PE LUN; a suspended VLUN on an array that hides
its controllers, then an unknown VLUN; a PE LUN asked for with every type.

  $ cv show vlun id=2 | grep -E '^(Status|Path) '
  Status                : Unavailable
  Path 0 [3:0:0:3] (sdao)  : Fault
  Path 4 [4:0:0:3] (sdas)  : Disable
  Path 18 [3:0:8:3] (sdau)  : Fault
  Path 1 [3:0:1:3] (sdap)  : Fault
  Path 5 [4:0:1:3] (sdat)  : Disable
  Path 2 [3:0:2:3] (sdaq)  : Fault
  Path 3 [3:0:3:3] (sdar)  : Disable
  $ cv show vlun id=4 | tail -n 3
  Manual IO Suspension  : Off
  Device Type       : PE LUN
  -------------------------------------------------------
  $ cv show vlun id=11,77 > out.txt
  [1]
  $ sed -n '/^Owning/,/^Working/p; /^Controller/,$p' out.txt
  Owning Controller     : --
  Working Controller    : --
  Controller 0
  Path 13 [3:0:6:3] (sdcd)  : Fault
  Manual IO Suspension  : On(timeout/remain : {3600} seconds/{2600} seconds)
  -------------------------------------------------------
  The VLUN whose ID is 77 does not exist.
  -------------------------------------------------------
  $ cv show vlun id=6 type=all | tail -n 3
  Manual IO Suspension  : Off
  Device Type       : PE LUN
  -------------------------------------------------------

A dual-site VLUN shows both members; a VLUN of another type than the one
asked for gets its own line and the command fails.

  $ cv show vlun id=3
  =======================================================
                    VLUN#3 Information                   
  =======================================================
  Disk                     : sde
  Manual IO Suspension     : Off
  Aggregation Type         : Dual Site
  Aggregation Specific Attribution
      WorkingMode            : read write between both arrays
      Primary Array SN       : 2102351QLH10K7000001
  Aggregation Member#0 Infomation
      Name              : metro_vol01
      Status            : Normal
      Capacity          : 500.00GB
      Aggregation Specific Attribution : N/A
      LUN WWN           : 62c7f1a10b4c8a10000000000000002a
      Array Name        : Dorado-Prod
      Array SN          : 2102351QLH10K7000001
      Driver            : alua
      Product Name      : Dorado5000 V6
      Vendor Name       : CORVANE
      Owning Controller : 1A
      Working Controller: 1A
      Num of Paths      : 7
      Controller 0A
      Path 0 [3:0:0:4] (sdav)  : Normal
      Path 4 [4:0:0:4] (sdaz)  : Disable
      Path 18 [3:0:8:4] (sdbb)  : Potential fault degradation
      Controller 0B
      Path 1 [3:0:1:4] (sdaw)  : Normal
      Path 5 [4:0:1:4] (sdba)  : Disable
      Controller 1A
      Path 2 [3:0:2:4] (sdax)  : I/O timeout degradation
      Controller 1B
      Path 3 [3:0:3:4] (sday)  : Disable
  Aggregation Member#1 Infomation
      Name              : metro_vol01
      Status            : Normal
      Capacity          : 500.00GB
      Aggregation Specific Attribution : N/A
      LUN WWN           : 62c7f1a10b4c8a10000000000000002a
      Array Name        : \xb4\xe6\xb4\xa2-SiteB (esc)
      Array SN          : 2102351QLH10K7000077
      Driver            : alua
      Product Name      : Dorado5000 V6
      Vendor Name       : CORVANE
      Owning Controller : CTE0.B
      Working Controller: CTE0.B
      Num of Paths      : 3
      Controller CTE0.A
      Path 10 [6:0:0:4] (sdbv)  : Normal
      Path 12 [6:0:2:4] (sdbx)  : High latency degradation
      Controller CTE0.B
      Path 11 [6:0:1:4] (sdbw)  : Sensitive delayed degradation
  -------------------------------------------------------
  $ cv show vlun id=0 type=dualsite
  The VLUN whose ID is 0 is not a dualsite vlun.
  -------------------------------------------------------
  [1]

Columns keep their widths at the prompt: array 1's table widens them, and
array 0's table after it stays wide (headers, VLUN 0 and closing lines).

  $ printf 'show vlun array_id=0\nshow vlun array_id=1\nshow vlun array_id=0\nquit\n' | cv | grep -E '^( +Vlun ID| +0 |-+$)'
   Vlun ID  Disk      Name                  Lun WWN                 Status     Capacity  Ctrl(Own/Work)  Array Name   Dev Lun ID  
      0     sdb   prod_db_data  62c7f1a10b4c8a10000000000000000b    Normal      2.00TB       0A/0A       Dorado-Prod      11      
  --------------------------------------------------------------------------------------------------------------------------------------
   Vlun ID  Disk      Name                   Lun WWN                 Status     Capacity  Ctrl(Own/Work)   Array Name    Dev Lun ID  
  -----------------------------------------------------------------------------------------------------------------------------------------
   Vlun ID  Disk      Name                   Lun WWN                 Status     Capacity  Ctrl(Own/Work)   Array Name    Dev Lun ID  
      0     sdb   prod_db_data   62c7f1a10b4c8a10000000000000000b    Normal      2.00TB       0A/0A        Dorado-Prod       11      
  -----------------------------------------------------------------------------------------------------------------------------------------

Refused requests: the array list, the VLUN request.

  $ echo '11 refuse 1' > root/sim/faults
  $ cv show vlun
  Can't find any vluns.
  [1]
  $ echo '95 code=1039 1' > root/sim/faults
  $ cv show vlun id=0
  The VLUN whose ID is 0 does not exist.
  -------------------------------------------------------
  [1]

Words the command does not take.

  $ usage_of vlun show vlun verbose
  Error: Invalid input!
  Usage:
              -- show vlun id=<0,1,2,...> [type=<all|dualsite|migration>] [verbose]
              -- show vlun array_id=<0,1,2,...> [type=<all|dualsite|migration>]
              -- show vlun type=<all|dualsite|migration>
  [1]
  $ refusals <<'EOF'
  > show vlun name=1
  > show vlun type=bogus
  > show vlun type=
  > show vlun type=all array_id=0
  > show vlun array_id=0 type=all type=pe
  > show vlun array_id=0 verbose
  > show vlun array_id=
  > show vlun array_id=0,1,2,3,4,5,6,7,8
  > show vlun id=0 type=x
  > show vlun id=0 extra
  > show vlun id=
  > show vlun id=16384
  > EOF
  [1] show vlun name=1: Error: Invalid input! | <vlun usage>
  [1] show vlun type=bogus: Error: Invalid input! | <vlun usage>
  [1] show vlun type=: Error: Invalid input! | <vlun usage>
  [1] show vlun type=all array_id=0: Error: Invalid input! | <vlun usage>
  [1] show vlun array_id=0 type=all type=pe: Error: Invalid input! | <vlun usage>
  [1] show vlun array_id=0 verbose: Error: Invalid input! | <vlun usage>
  [1] show vlun array_id=: Error: Invalid input! | <vlun usage>
  [1] show vlun array_id=0,1,2,3,4,5,6,7,8: Error: You can't input more than 8 ids | Error: Invalid input! | <vlun usage>
  [1] show vlun id=0 type=x: Error: Invalid input! | <vlun usage>
  [1] show vlun id=0 extra: Error: Invalid input! | <vlun usage>
  [1] show vlun id=: Error: Invalid input! | <vlun usage>
  [1] show vlun id=16384: Error: 16384 is out of range | Error: Invalid input! | <vlun usage>

"verbose" adds the VLUN's effective configuration, before the suspension
line: its own values first, then its array's, then the common ones. VLUN 1
lies in array 0; the array sets one value, the LUN overrides another.

  $ sed -i 's|<array/>|<array><array2102351QLH10K7000001><lb_io_threshold>500</lb_io_threshold><iosuspensiontime>30</iosuspensiontime></array2102351QLH10K7000001></array>|' root/etc/user_cfg.xml
  $ wwn=$(cv show vlun id=1 | sed -n 's/^LUN WWN *: //p')
  $ sed -i "s|<lun/>|<lun><lun$wwn><iosuspensiontime>0</iosuspensiontime><luntrespass>0</luntrespass></lun$wwn></lun>|" root/etc/user_cfg.xml
  $ cv show vlun id=1,0 verbose | sed -n '/Information/p; /^Working Mode/,/^Manual/p'
                    VLUN#1 Information                   
  Working Mode      : load balancing within controller
  LUN Trespass      : off
  LoadBalance Mode  : minimal queue depth algorithm
  Loadbanlance io threshold : 500
  Io Suspension Time        : 0
  Max io retry timeout      : 1800
  Manual IO Suspension  : Off
                    VLUN#0 Information                   
  Working Mode      : load balancing within controller
  LUN Trespass      : on
  LoadBalance Mode  : minimal queue depth algorithm
  Loadbanlance io threshold : 500
  Io Suspension Time        : 30
  Max io retry timeout      : 1800
  Manual IO Suspension  : Off

A configuration that cannot be read: the VLUN is skipped after a dash line.

  $ : > root/etc/user_cfg.xml
  $ cv show vlun id=1 verbose
  -------------------------------------------------------
  Get config information failed.
  [1]
