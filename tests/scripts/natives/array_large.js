// Long arrays in the ways that programs use them: filled from either end, as a stack, as a queue.
// args: -load {root}/tests/support/show.js
// max memory: 100
var n = 200000;
var a = [];
var b = [];
var sum = 0;
for (var i = 0; i < n; i++) {
    a[i] = i;
}
for (i = n - 1; i >= 0; i--) {
    b[i] = i;
}
show("filled", a.length + " " + b.length + " " + a[n - 1] + " " + b[0] + " " + (a.join() == b.join()));
show("moved", a.slice(1000, n - 1000).reverse()[5] + " " + a.concat(b, a).length + " " + b.reverse()[0]);
for (i = 0; i < n; i++) {
    a.push(i);
    sum += a.pop();
}
show("stack", sum + " " + a.length);
var queue = a.slice(0, 10000);
for (i = 0; i < 10000; i++) {
    queue.push(i);
    sum += queue.shift() - queue.shift();
}
show("queue", sum + " " + queue.length);
a.length = 10;
show("cut", a);
// expect: filled: 200000 200000 199999 0 true
// expect: moved: 198994 600000 199999
// expect: stack: 19999900000 200000
// expect: queue: 19999890000 0
// expect: cut: 0,1,2,3,4,5,6,7,8,9
