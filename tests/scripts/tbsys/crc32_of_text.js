// expect error: line 2: array argument expected
TBSys.crc32('123456789');
