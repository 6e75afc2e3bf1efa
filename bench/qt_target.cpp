// SPDX-License-Identifier: MIT

// A Qt window for the contenders to move.

#include <QApplication>
#include <QPlainTextEdit>

int main(int count, char** arguments) {
    const QApplication application(count, arguments);
    QPlainTextEdit editor;
    editor.setPlainText("A window to be moved about.");
    editor.resize(640, 480);
    editor.show();
    return QApplication::exec();
}
