// The host objects are plain objects, hidden from enumeration; their members are not.
// expect: function 1 false undefined
// expect: function 2 true
// expect: WScript Echo,
// expect: TBSys renameFile,copyFile,removeFile,fileExists,fileSize,makeDirectory,removeDirectory,writeStringToFile,readStringFromFile,writeByteArrayToFile,readByteArrayFromFile,crc32,run,getRunStdout,getRunStderr,
function line(text) { WScript.Echo(text + '\n'); }
function names(object) {
    var text = '';
    for (var name in object)
        if (object.hasOwnProperty(name))
            text += name + ',';
    return text;
}
var listed = false;
for (var name in this)
    if (name == 'WScript' || name == 'TBSys' || name == 'ElfFile')
        listed = true;
line(typeof WScript.Echo + ' ' + WScript.Echo.length + ' ' + listed + ' ' + WScript.Echo.help);
line(typeof TBSys.run + ' ' + TBSys.run.length + ' ' + (TBSys.run.help ==
     '<b>TBSys.run(cmd, wait)</b> runs command line <i>cmd</i> optionally waits for it to complete if <i>wait</i> is true.'));
line('WScript ' + names(WScript));
line('TBSys ' + names(TBSys));
