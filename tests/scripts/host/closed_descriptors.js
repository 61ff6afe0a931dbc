// A run without standard descriptors must not take a file for one of them.
// args: -define program={program}
// file: inner.js
//| WScript.Echo('lost');
//| TBSys.writeStringToFile('out.txt', 'kept');
//| WScript.Echo('lost too');
//| WScript.Echo(TBSys.run('sh -c "echo gone; exit 5"', false));
//| TBSys.run('sh -c "echo caught"', true);
//| TBSys.writeStringToFile('caught.txt', TBSys.getRunStdout());
// expect: 0
// expect file: out.txt
//| kept
// expect file: caught.txt
//| caught
WScript.Echo(TBSys.run('sh -c "exec ' + program + ' -load inner.js <&- >&- 2>&-"', false) + '\n');
TBSys.run('sh -c "echo >> out.txt; echo >> caught.txt"', false);
