import QtQuick

// The chosen build: test notes per language, beta review and usage.
Item {
    required property var model
}
