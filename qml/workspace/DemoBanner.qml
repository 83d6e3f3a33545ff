pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import Varnis.Theme

Rectangle {
    property alias text: label.text
    implicitHeight: label.implicitHeight + 12
    color: Theme.bannerBackground
    Accessible.role: Accessible.AlertMessage
    Accessible.name: label.text

    Label {
        id: label
        anchors.fill: parent
        anchors.leftMargin: 12
        anchors.rightMargin: 12
        verticalAlignment: Text.AlignVCenter
        color: Theme.bannerText
        elide: Text.ElideRight
    }
}
