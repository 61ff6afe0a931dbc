// Object and the members of its prototype.
// args: -load {root}/tests/support/show.js
var o = new Object();
o.own = 1;
show("Object()", Object() + " " + Object(null) + " " + Object(undefined));
show("Object(1)", typeof Object(1) + " " + (Object(1) + 1));
show("Object(o)", (Object(o) == o) + " " + (new Object(o) == o));
show("new Object(1)", (new Object(1)).valueOf() + " " + (new Object("text")).length + " " + new Object(false));

function textOf(thing) {
    thing.asText = Object.prototype.toString;
    return thing.asText();
}
show("toString", textOf(o) + textOf([]) + textOf(new Date()) + textOf(new Error()) + textOf(show) + textOf(this) +
     textOf(WScript) + textOf(Math) + textOf(new Boolean(0)));
show("toLocaleString", o.toLocaleString());
// A function is of the class that implements it, so this one converts as a Number object with its own name.
show("a constructor as a text", "" + Number + Date);
show("arguments of toString", (new Object()).toString.length);

show("valueOf", (o.valueOf() == o) + " " + (new Number(3)).valueOf());
show("hasOwnProperty", o.hasOwnProperty("own") + " " + o.hasOwnProperty("toString") + " " + o.hasOwnProperty() + " " +
     [].hasOwnProperty("length") + " " + [1, 2].hasOwnProperty(1) + " " + [1, 2].hasOwnProperty("1") + " " +
     [1, 2].hasOwnProperty(2));
show("isPrototypeOf", Object.prototype.isPrototypeOf(o) + " " + o.isPrototypeOf(o) + " " + o.isPrototypeOf(1) + " " +
     Array.prototype.isPrototypeOf([]) + " " + Object.prototype.isPrototypeOf(Object.prototype));
show("propertyIsEnumerable", o.propertyIsEnumerable("own") + " " + o.propertyIsEnumerable("toString") + " " +
     [7].propertyIsEnumerable(0) + " " + [7].propertyIsEnumerable(1) + " " + Math.propertyIsEnumerable("PI"));
var names = "";
for (var k in o) {
    names = names + k + " ";
}
show("enumeration", names);
show("no call", Object.prototype.toString.call);
var bare = o.toString;
show("bare call", bare());
new o.toString();
// expect: Object(): [object Object] [object Object] [object Object]
// expect: Object(1): object 2
// expect: Object(o): true true
// expect: new Object(1): 1 4 false
// expect: toString: [object Object][object Array][object Date][object Error][object Function][object global][object Object][object Object][object Boolean]
// expect: toLocaleString: [object Object]
// expect: a constructor as a text: Number<<function>>
// expect: arguments of toString: 0
// expect: valueOf: true 3
// expect: hasOwnProperty: true false false true true true false
// expect: isPrototypeOf: true false false true false
// expect: propertyIsEnumerable: true false true false false
// expect: enumeration: constructor toString toLocaleString valueOf hasOwnProperty isPrototypeOf propertyIsEnumerable own asText 
// expect: no call: undefined
// expect: bare call: [object global]
// expect error: line 37: new must be given a constructor object
