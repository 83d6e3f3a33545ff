import QtQuick

// The app's beta information per language.
Item {
    required property var model
}
