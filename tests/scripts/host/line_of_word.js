// The words of the command line are lines of one script, and count as such.
// args-only: "WScript.Echo('before')" "var text = ''" "TBSys.crc32(text)" "WScript.Echo('after')"
// expect-raw: "before"
// expect error: line 3: array argument expected
