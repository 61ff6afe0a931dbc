// The generator starts from the library's default seed in every run, and any bit pattern comes as a number:
// eight low bytes make the first one.
WScript.Echo(Math.random() + "\n");
// expect: -4544309102364921317125152218643782972462736744896166644755467457220944366285396132801808161585255409137638470464233504652543094229028015005966824385337413570724451139913091145331288322023349142723728098089978822656
var same = 0;
var last = 0;
for (var i = 0; i < 1000; i++) {
    var next = Math.random();
    if (typeof next != "number") {
        WScript.Echo("not a number\n");
    }
    same += next == last ? 1 : 0;
    last = next;
}
WScript.Echo(same + "\n");
// expect: 0
