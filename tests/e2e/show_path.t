`show path` on the default topology: the physical paths of every array,
of one array, and chosen paths in detail.

  $ . "$TESTDIR/lib.sh"

Every array has its own table and the columns grow from one to the next.
FC, SAS and iSCSI paths (IPv4 and IPv6 initiators); disabled, faulty,
degraded and busy paths (a busy physical path reads "Normal"); check
steps; controllers with names of their own. Array 3 has paths but no
disk.

  $ cv show path
  -------------------------------------------------------------------------------------------------------------------------------------------------------------
   Path ID      Initiator Port       Array Name   Controller        Target Port                Path State           Check State  Port Type     Port ID     
      0     21:00:00:24:ff:4c:8a:10  Dorado-Prod      0A      20:08:00:1b:32:0a:4c:01            Normal               Succeed       FC      CTE0.A.IOM0.P0 
      1     21:00:00:24:ff:4c:8a:10  Dorado-Prod      0B      20:08:00:1b:32:0a:4c:02            Normal                 --          FC      CTE0.B.IOM0.P0 
      2     21:00:00:24:ff:4c:8a:10  Dorado-Prod      1A      20:08:00:1b:32:0a:4c:03    I/O timeout degradation     Checking       FC      CTE1.A.IOM0.P0 
      3     21:00:00:24:ff:4c:8a:10  Dorado-Prod      1B      20:08:00:1b:32:0a:4c:04            Disable                --          FC      CTE1.B.IOM0.P0 
      4     21:00:00:24:ff:4c:8a:11  Dorado-Prod      0A      20:08:00:1b:32:0a:4c:11            Disable                --          FC            --       
      5     21:00:00:24:ff:4c:8a:11  Dorado-Prod      0B      20:08:00:1b:32:0a:4c:12            Disable                --          FC            --       
     18     21:00:00:24:ff:4c:8a:10  Dorado-Prod      0A      20:08:00:1b:32:0a:4c:05  Potential fault degradation      --          FC      CTE0.A.IOM0.P1 
  -------------------------------------------------------------------------------------------------------------------------------------------------------------
  ---------------------------------------------------------------------------------------------------------------------------------------------------------------
   Path ID      Initiator Port        Array Name    Controller        Target Port                Path State           Check State  Port Type     Port ID     
      6        500605b00a4c7e20      S5500T-Backup      0          500a0b8a4c7e0a01                Normal                 --          SAS           --       
      7        500605b00a4c7e20      S5500T-Backup      1          500a0b8a4c7e0a02                Normal               Waiting       SAS           --       
      8     21:00:00:24:ff:4c:8a:10  S5500T-Backup      0       20:08:00:1b:32:0b:5d:01            Normal                 --          FC            --       
      9     21:00:00:24:ff:4c:8a:10  S5500T-Backup      1       20:08:00:1b:32:0b:5d:02             Fault                Fail         FC            --       
     16     21:00:00:24:ff:4c:8a:11  S5500T-Backup      0       20:08:00:1b:32:0b:5d:11            Disable                --          FC            --       
  ---------------------------------------------------------------------------------------------------------------------------------------------------------------
  ------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------
   Path ID                         Initiator Port                           Array Name    Controller                 Target Port                          Path State           Check State  Port Type     Port ID     
     10         iqn.1994-05.com.redhat:cvhost01::192.168.10.21::51034       \xb4\xe6\xb4\xa2-SiteB      CTE0.A    iqn.2006-08.com.corvane:siteb:cte0.a::3260            Normal                 --         iSCSI          --        (esc)
     11     iqn.1994-05.com.redhat:cvhost01::FD00:10:20:0:0:0:0:21::51035   \xb4\xe6\xb4\xa2-SiteB      CTE0.B    iqn.2006-08.com.corvane:siteb:cte0.b::3260           Degraded                --         iSCSI          --        (esc)
     12         iqn.1994-05.com.redhat:cvhost01::192.168.11.21::51036       \xb4\xe6\xb4\xa2-SiteB      CTE0.A    iqn.2006-08.com.corvane:siteb:cte0.a::3260   High latency degradation        --         iSCSI          --        (esc)
  ------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------
  ------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------
   Path ID                         Initiator Port                           Array Name    Controller                 Target Port                          Path State           Check State  Port Type     Port ID     
     15                           500605b00a4c7e20                         Archive-Empty      0                    500a0b8a4c7e0b01                         Normal                 --          SAS           --       
  ------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------
  ------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------
   Path ID                         Initiator Port                           Array Name    Controller                 Target Port                          Path State           Check State  Port Type     Port ID     
     13                        21:00:00:24:ff:4c:8a:10                      Legacy-2200       0                20:08:00:1b:32:0c:6e:01                       Fault                 --          FC            --       
     14                        21:00:00:24:ff:4c:8a:10                      Legacy-2200       1                20:08:00:1b:32:0c:6e:02                      Disable                --          FC            --       
     17                           500605b00a4c7e20                          Legacy-2200       0                    500a0b8a4c7e0c01                          Fault                 --          SAS           --       
  ------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------

One array; an array without paths.

  $ cv show path array_id=1
  ---------------------------------------------------------------------------------------------------------------------------------------
   Path ID      Initiator Port        Array Name    Controller        Target Port        Path State  Check State  Port Type  Port ID 
      6        500605b00a4c7e20      S5500T-Backup      0          500a0b8a4c7e0a01        Normal        --          SAS       --    
      7        500605b00a4c7e20      S5500T-Backup      1          500a0b8a4c7e0a02        Normal      Waiting       SAS       --    
      8     21:00:00:24:ff:4c:8a:10  S5500T-Backup      0       20:08:00:1b:32:0b:5d:01    Normal        --          FC        --    
      9     21:00:00:24:ff:4c:8a:10  S5500T-Backup      1       20:08:00:1b:32:0b:5d:02    Fault        Fail         FC        --    
     16     21:00:00:24:ff:4c:8a:11  S5500T-Backup      0       20:08:00:1b:32:0b:5d:11   Disable        --          FC        --    
  ---------------------------------------------------------------------------------------------------------------------------------------
  $ cv show path array_id=99
  There is no path or vlun on the disk array whose ID is 99.
  [1]

Details: one path in full, then the lines that vary for a check in
progress with growing counters, an iSCSI path over IPv6, a path that does
not exist and a SAS path still waiting for its check.

  $ cv show path id=1
  ========================================
             Path#1 Information           
  ========================================
  Initiator Port  :  21:00:00:24:ff:4c:8a:10
  Array Name      :  Dorado-Prod
  Controller      :  0B
  Target Port     :  20:08:00:1b:32:0a:4c:02
  Path State      :  Normal
  Check State     :  --
  Port Type       :  FC
  I/O Retry count :  0
  Path Fault count:  0
  Latency-Low(ms) :  1
  Latency-High(ms):  22
  Latency-avg(ms) :  5
  Port ID         :  CTE0.B.IOM0.P0
  ========================================
  $ cv show path id=2,11,99,7 > out.txt
  $ grep -E 'Information|not exist|^(Initiator Port|Check State|I/O Retry count|Path Fault count|Latency-High\(ms\))' out.txt
             Path#2 Information           
  Initiator Port  :  21:00:00:24:ff:4c:8a:10
  Check State     :  Checking
  I/O Retry count :  190
  Path Fault count:  15
  Latency-High(ms):  1900
            Path#11 Information           
  Initiator Port  :  iqn.1994-05.com.redhat:cvhost01::FD00:10:20:0:0:0:0:21::51035
  Check State     :  --
  I/O Retry count :  0
  Path Fault count:  0
  Latency-High(ms):  35000
  The path whose ID is 99 does not exist.
             Path#7 Information           
  Initiator Port  :  500605b00a4c7e20
  Check State     :  Waiting
  I/O Retry count :  0
  Path Fault count:  0
  Latency-High(ms):  0

Columns keep their widths at the prompt: array 2's table widens them, and
array 0's after it stays wide (headers, path 0 and closing lines).

  $ printf 'show path array_id=0\nshow path array_id=2\nshow path array_id=0\nquit\n' | cv | grep -E '^( +Path ID| +0 |-+$)'
   Path ID      Initiator Port       Array Name   Controller        Target Port                Path State           Check State  Port Type     Port ID     
      0     21:00:00:24:ff:4c:8a:10  Dorado-Prod      0A      20:08:00:1b:32:0a:4c:01            Normal               Succeed       FC      CTE0.A.IOM0.P0 
  -------------------------------------------------------------------------------------------------------------------------------------------------------------
   Path ID                         Initiator Port                          Array Name   Controller                 Target Port                          Path State           Check State  Port Type     Port ID     
  ----------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------
   Path ID                         Initiator Port                          Array Name   Controller                 Target Port                          Path State           Check State  Port Type     Port ID     
      0                        21:00:00:24:ff:4c:8a:10                     Dorado-Prod      0A               20:08:00:1b:32:0a:4c:01                      Normal               Succeed       FC      CTE0.A.IOM0.P0 
  ----------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------------

Refused requests: the array list, the path list of an array, one path
(the next one is still shown).

  $ echo '11 refuse 1' > root/sim/faults
  $ cv show path
  [1]
  $ tracelog | grep -c 'Enumerate array ids fail'
  1
  $ echo '41 code=1031 1' > root/sim/faults
  $ cv show path array_id=0
  There is no path or vlun on the disk array whose ID is 0.
  [1]
  $ echo '42 code=1031 1' > root/sim/faults
  $ cv show path id=1,0 > out.txt
  $ grep -E 'Information|not exist' out.txt
  The path whose ID is 1 does not exist.
             Path#0 Information           

Words the command does not take.

  $ usage_of path show path id=0 array_id=0
  Error: Invalid input!
  Usage:
     -- show path [id=<ID1,ID2,...>|array_id=ID]
  [1]
  $ refusals <<'EOF'
  > show path name=1
  > show path array_id=abc
  > show path array_id
  > EOF
  [1] show path name=1: Error: Invalid input! | <path usage>
  [1] show path array_id=abc: Error: Invalid input! | <path usage>
  [1] show path array_id: Error: Invalid input! | <path usage>
  $ usage_of id-list show path id=abc
  Error: Invalid input --- abc
  Usage:
        -- show path [id=<ID1,ID2,...>|array_id=ID]
  [1]
  $ refusals <<'EOF'
  > show path id=1,2,3,4,5,6,7,8,9
  > show path id=
  > EOF
  [1] show path id=1,2,3,4,5,6,7,8,9: Error: You can't input more than 8 ids | <id-list usage>
  [1] show path id=: <id-list usage>
