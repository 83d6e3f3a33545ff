import QtQuick
import QtQuick.Controls

Rectangle {
    property alias text: label.text
    implicitHeight: label.implicitHeight + 12
    color: "#fff4d6"
    Accessible.role: Accessible.AlertMessage
    Accessible.name: label.text

    Label {
        id: label
        anchors.fill: parent
        anchors.leftMargin: 12
        anchors.rightMargin: 12
        verticalAlignment: Text.AlignVCenter
        color: "#6b4e00"
        elide: Text.ElideRight
    }
}
