// expect-raw: "abundefined1.5[object Object]1,2nulltruecut[object Object]undefined|"
WScript.Echo('a');
WScript.Echo('b');
WScript.Echo();
WScript.Echo(1.5, 'ignored');
WScript.Echo(new Object);
WScript.Echo([1, 2]);
WScript.Echo(null);
WScript.Echo(true);
WScript.Echo('cut' + String.fromCharCode(0) + 'off');
WScript.Echo(WScript);
WScript.Echo(WScript.Echo(''));
WScript.Echo('|');
