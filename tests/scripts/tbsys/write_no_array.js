// The file is open, and its old content gone, before the array is looked at.
// file: f
//| old
// expect error: line 6: array argument expected
// expect file: f
TBSys.writeByteArrayToFile('f', { length: 1 });
