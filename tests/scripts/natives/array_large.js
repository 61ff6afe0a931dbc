// Long arrays in the ways that programs use them: filled from either end, as a stack, as a queue, sorted.
// max memory: 100
// args: -load {root}/tests/support/show.js
var n = 200000;
var i;
var a = [];
for (i = 0; i < n; i++) {
    a[i] = i;
}
var b = [];
for (i = n - 1; i >= 0; i--) {
    b[i] = i;
}
show("filled", a.length + " " + b.length + " " + a[n - 1] + " " + b[0] + " " + (a.join() == b.join()));
show("moved", a.slice(1000, n - 1000).reverse()[5] + " " + a.concat(b, a).length + " " + b.reverse()[0]);
var sum = 0;
for (i = 0; i < n; i++) {
    a.push(i);
    sum = sum + a.pop();
}
show("stack", sum + " " + a.length);
var queue = [];
for (i = 0; i < 10000; i++) {
    queue.push(i);
}
sum = 0;
for (i = 0; i < 10000; i++) {
    queue.push(i);
    sum = sum + queue.shift() - queue.shift();
}
show("queue", sum + " " + queue.length);
var keys = [];
var seed = 1;
for (i = 0; i < 50000; i++) {
    seed = (seed * 16807) % 2147483647;
    keys[i] = seed;
}
var sorted = keys.concat().sort();
var wrong = 0;
for (i = 1; i < sorted.length; i++) {
    if (String(sorted[i - 1]) > String(sorted[i])) {
        wrong++;
    }
}
show("sorted as texts", sorted.length + " " + wrong);
sorted = keys.slice(0, 20000).sort(function (x, y) { return x - y; });
wrong = 0;
for (i = 1; i < sorted.length; i++) {
    if (sorted[i - 1] > sorted[i]) {
        wrong++;
    }
}
show("sorted as numbers", sorted.length + " " + wrong);
a.length = 10;
show("cut", a);
// expect: filled: 200000 200000 199999 0 true
// expect: moved: 198994 600000 199999
// expect: stack: 19999900000 200000
// expect: queue: -10000 0
// expect: sorted as texts: 50000 0
// expect: sorted as numbers: 20000 0
// expect: cut: 0,1,2,3,4,5,6,7,8,9
