function say(text) {
    WScript.Echo("say: " + text + "\n");
}
