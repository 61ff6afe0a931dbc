// args: -load {root}/lib/number.js
// args: -load {root}/tests/support/show.js

// Each text through the four readers: parse, parseHex, parseInteger, parseDecimal.
var texts = ["", "  ", "-", "12", "-12", "+7", " 42\r\n", "1.5", "-0.25", ".5", "5.", "1.2.3", "12a", "0x1F", "0X", "-0x10",
             "0b101", "0b2", "9007199254740991", "inf", "nan", "1e5", "--1", "+ 1", "1 2", "12\u00e9", "4294967296"];
for (var i = 0; i < texts.length; i++) {
    var text = texts[i];
    show("<" + (i == 6 ? "line" : i == 25 ? "letter" : text) + ">", Numbers.parse(text) + " " + Numbers.parseHex(text) + " " +
         Numbers.parseInteger(text) + " " + Numbers.parseDecimal(text));
}
show("radix", [Numbers.parse("zZ", 36), Numbers.parse("777", 8), Numbers.parse("8", 8), Numbers.parse("-1010", 2),
     Numbers.parse("1", 1), Numbers.parse("1", 37), Numbers.parse(undefined), Numbers.parse(31, 4)]);

show("hex", [Numbers.hex(255), Numbers.hex(255, 8), Numbers.hex(0, 2), Numbers.hex(-1, 8), Numbers.hex(-2147483648),
     Numbers.hex(4294967296), Numbers.hex(0xABCDE, 2), Numbers.hexDigits(10, 2), Numbers.hexDigits("18")]);
show("fixed", [Numbers.fixed(-0.001, 2), Numbers.fixed(-0.5, 1), Numbers.fixed(2.345, 1), Numbers.fixed(0 / 0, 2),
     Numbers.fixed(-1 / 0, 2), Numbers.fixed(7), Numbers.fixed("3.5", 2)]);
show("exact", [Numbers.exact(0.1), Numbers.exact(1 / 3), Numbers.exact(-1234567.5), Numbers.exact(0.1 + 0.2), Numbers.exact(42),
     Numbers.exact(-0), Numbers.exact(0 / 0), Numbers.exact(0.000125), Numbers.exact(9007199254740.993)]);
show("grouped", [Numbers.grouped(0), Numbers.grouped(999), Numbers.grouped(1000, "'"), Numbers.grouped(-1234567, " "),
     Numbers.grouped(123456)].join(";"));

// What exact() prints reads back, over numbers of all sizes.
var different = 0;
for (var exponent = -3; exponent < 300; exponent++) {
    var number = Math.sqrt(exponent + 5) * Math.pow(10, exponent);
    if (Number(Numbers.exact(number)) != number) {
        different++;
    }
}
show("read back", different);
// expect: <>: NaN NaN NaN NaN
// expect: <  >: NaN NaN NaN NaN
// expect: <->: NaN NaN NaN NaN
// expect: <12>: 12 18 12 12
// expect: <-12>: -12 -18 -12 -12
// expect: <+7>: 7 7 7 7
// expect: <line>: 42 66 42 42
// expect: <1.5>: NaN NaN NaN 1.5
// expect: <-0.25>: NaN NaN NaN -0.25
// expect: <.5>: NaN NaN NaN NaN
// expect: <5.>: NaN NaN NaN NaN
// expect: <1.2.3>: NaN NaN NaN NaN
// expect: <12a>: NaN 298 NaN NaN
// expect: <0x1F>: NaN 31 31 NaN
// expect: <0X>: NaN NaN NaN NaN
// expect: <-0x10>: NaN -16 -16 NaN
// expect: <0b101>: NaN 45313 5 NaN
// expect: <0b2>: NaN 178 NaN NaN
// expect: <9007199254740991>: 9007199254740991 10378291982571407360 9007199254740991 9007199254740991
// expect: <inf>: NaN NaN NaN NaN
// expect: <nan>: NaN NaN NaN NaN
// expect: <1e5>: NaN 485 NaN NaN
// expect: <--1>: NaN NaN NaN NaN
// expect: <+ 1>: NaN NaN NaN NaN
// expect: <1 2>: NaN NaN NaN NaN
// expect: <letter>: NaN NaN NaN NaN
// expect: <4294967296>: 4294967296 285960729238 4294967296 4294967296
// expect: radix: 1295,511,NaN,-10,NaN,NaN,NaN,13
// expect: hex: 0xFF,0x000000FF,0x00,0xFFFFFFFF,0x80000000,0x100000000,0xABCDE,0A,12
// expect: fixed: 0.00,-0.5,2.3,NaN,-Infinity,7,3.50
// expect: exact: 0.1,0.3333333333333333,-1234567.5,0.30000000000000004,42,0,NaN,0.000125,9007199254740.992
// expect: grouped: 0;999;1'000;-1 234 567;123,456
// expect: read back: 0
