pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import Varnis.Theme

Rectangle {
    property alias text: label.text
    // "negative" or "neutral"
    property string tone: "neutral"
    implicitHeight: label.implicitHeight + 10
    color: tone === "negative" ? Theme.negativeBackground : Theme.noticeBackground
    Accessible.role: Accessible.AlertMessage
    Accessible.name: label.text

    Label {
        id: label
        anchors.fill: parent
        anchors.leftMargin: 12
        anchors.rightMargin: 12
        verticalAlignment: Text.AlignVCenter
        wrapMode: Text.Wrap
        color: parent.tone === "negative" ? Theme.negative : Theme.noticeText
    }
}
