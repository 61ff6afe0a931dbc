// What an error shows is its message, whatever has become of it, without what Latin-1 lacks.
// args-only: "Error.prototype.message" "WScript.Echo('\u20ac\u00e9', 1)" "TBSys.crc32('')"
// expect-raw: "?\xe9"
// expect error: line 3: array argument expected
