pragma ComponentBehavior: Bound
import QtQuick
import Varnis.App
import Varnis.Theme

// One app in the lists. Plain items rather than controls: there can be a thousand of these,
// and every row costs start-up time.
Rectangle {
    id: row
    required property string appId
    required property string name
    required property string subtitle
    required property bool isFavorite
    required property bool isSelected

    implicitHeight: 40
    color: isSelected ? palette.highlight : (area.containsMouse ? palette.alternateBase : "transparent")
    // The keyboard's place in "Alle Apps", visible while the list has the focus; a border rather
    // than an item of its own, since every row pays for its items.
    border.width: ListView.view !== null && ListView.isCurrentItem && ListView.view.activeFocus ? 2 : 0
    border.color: palette.highlight
    radius: border.width > 0 ? 3 : 0
    Accessible.role: Accessible.ListItem
    required property string accessibleName
    Accessible.name: accessibleName
    Accessible.selected: isSelected


    // Mouse areas rather than tap handlers: the star's own area takes its click, so that
    // marking a favourite does not also select the app.
    MouseArea {
        id: area
        anchors.fill: parent
        hoverEnabled: true
        onClicked: Shell.workspace.selectApp(row.appId)
    }

    Text {
        id: title
        anchors.left: parent.left
        anchors.right: star.left
        anchors.leftMargin: 8
        y: 4
        text: row.name
        textFormat: Text.PlainText
        color: row.isSelected ? palette.highlightedText : palette.text
        elide: Text.ElideRight
        font.pixelSize: Theme.bodySize
    }
    Text {
        anchors.left: title.left
        anchors.right: title.right
        anchors.top: title.bottom
        text: row.subtitle
        textFormat: Text.PlainText
        color: row.isSelected ? palette.highlightedText : palette.placeholderText
        elide: Text.ElideRight
        font.pixelSize: Theme.captionSize
    }

    Text {
        id: star
        anchors.right: parent.right
        anchors.rightMargin: 10
        anchors.verticalCenter: parent.verticalCenter
        text: row.isFavorite ? "★" : "☆"
        textFormat: Text.PlainText
        color: row.isSelected ? palette.highlightedText : palette.text
        font.pixelSize: Theme.symbolSize
        Accessible.role: Accessible.Button
        Accessible.name: row.isFavorite ? "Aus Favoriten entfernen" : "Zu Favoriten hinzufügen"
        MouseArea {
            objectName: "favoriteStar"
            anchors.fill: parent
            anchors.margins: -6
            onClicked: Shell.workspace.toggleFavorite(row.appId)
        }
    }
}
