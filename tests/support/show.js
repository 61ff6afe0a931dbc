// What scripts print their results with: show("label", value) or show([a, b, c]).
function show(label, value) {
    if (typeof label == "string") {
        WScript.Echo(label + ": " + value + "\n");
        return;
    }
    var text = "";
    for (var i = 0; i < label.length; i++) {
        text += (i > 0 ? "|" : "") + label[i];
    }
    WScript.Echo(text + "\n");
}
