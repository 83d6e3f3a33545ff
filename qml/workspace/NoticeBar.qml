import QtQuick
import QtQuick.Controls

Rectangle {
    property alias text: label.text
    // "negative" or "neutral"
    property string tone: "neutral"
    implicitHeight: label.implicitHeight + 10
    color: tone === "negative" ? "#fde7e7" : "#eef2f7"
    Accessible.role: Accessible.AlertMessage
    Accessible.name: label.text

    Label {
        id: label
        anchors.fill: parent
        anchors.leftMargin: 12
        anchors.rightMargin: 12
        verticalAlignment: Text.AlignVCenter
        wrapMode: Text.Wrap
        color: parent.tone === "negative" ? "#8a1c1c" : "#33475b"
    }
}
