// Copies the artefacts of a release into a new directory that bears name, version and date, together with a
// list of their sizes and checksums. Nothing that exists is replaced: a second release on one day needs
// another version.
//
//   quorvane -define "files=firmware.elf;firmware.bin" -define to=releases -define name=thermostat \
//       -define version=1.2.3 -load lib/text.js -load lib/assert.js -load lib/number.js -load lib/crc.js \
//       -load examples/release.js
//
//   files     paths, with ";" between them
//   to        directory in which the new one is made, and which is made with it
//   name, version
//   date      such as 2026-11-22; without one, today. A build that must come out the same again gives it

function today() {
    var now = new Date();
    return now.getFullYear() + "-" + Text.padLeft(now.getMonth() + 1, 2, "0") + "-" +
           Text.padLeft(now.getDate(), 2, "0");
}

function baseName(path) {
    return path.substring(path.lastIndexOf("/") + 1);
}

// Everything is looked at before anything is made, so that no half of a release is left behind.
function checkedPaths() {
    var paths = Text.split(Assert.defined(files, "files"), ";");
    var seen = ";";
    for (var i = 0; i < paths.length; i++) {
        var file = baseName(paths[i]);
        Assert.that(TBSys.readByteArrayFromFile(paths[i]) != undefined, "cannot read " + paths[i]);
        Assert.that(!Text.contains(seen, ";" + file + ";"), "two files named " + file);
        seen += file + ";";
    }
    return paths;
}

function release() {
    var paths = checkedPaths();
    var directory = Assert.defined(to, "to") + "/" + Assert.defined(name, "name") + "-" +
                    Assert.defined(version, "version") + "-" + (date == undefined ? today() : date);
    Assert.that(!TBSys.fileExists(directory), directory + " exists already");
    Assert.that(TBSys.makeDirectory(directory), "cannot make " + directory);

    var contents = "";
    for (var i = 0; i < paths.length; i++) {
        var target = directory + "/" + baseName(paths[i]);
        Assert.that(TBSys.copyFile(paths[i], target), "cannot copy " + paths[i]);
        // The checksum is of the copy as it can be read back.
        var bytes = TBSys.readByteArrayFromFile(target);
        Assert.that(bytes != undefined && bytes.length == TBSys.fileSize(paths[i]), target + " is not whole");
        contents += Numbers.hexDigits(Crc.zlib(bytes), 8).toLowerCase() + " " +
                    Text.padLeft(bytes.length, 10) + " " + baseName(target) + "\n";
    }
    var listing = directory + "/CONTENTS";
    Assert.that(TBSys.writeStringToFile(listing, contents) && TBSys.readStringFromFile(listing) == contents,
                "cannot write " + listing);
    WScript.Echo(contents + directory + "\n");
}

release();
