// Writes the number `version` into the image, and says which slot was asked for.
ElfFile.load(input);
var where = ElfFile.symbolValue("board::imageVersion");
ElfFile.pokeUint32(where, Number(Assert.defined(version, "version")));
say("version " + version + ", slot [" + slot + "]");
if (slot != "unsaved") {
    ElfFile.save(output);
}
if (slot == "broken") {
    stopHere();
}
