// The least that a program with this library can do: what the start of quorvane is held against.
#include <QString>

int main(int argc, char** argv) {
    const QString text = QString::fromLatin1(argc > 1 ? argv[1] : "");
    return text.isEmpty() ? 1 : 0;
}
