import QtQuick

// Screenshots and crashes that testers sent.
Item {
    required property var model
}
