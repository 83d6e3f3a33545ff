import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

ItemDelegate {
    id: row
    required property string appId
    required property string name
    required property string subtitle
    required property bool isFavorite
    required property bool isSelected

    highlighted: isSelected
    Accessible.name: name + ", " + subtitle
    onClicked: workspace.selectApp(appId)

    contentItem: RowLayout {
        spacing: 6
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 0
            Label {
                Layout.fillWidth: true
                text: row.name
                elide: Text.ElideRight
            }
            Label {
                Layout.fillWidth: true
                text: row.subtitle
                elide: Text.ElideRight
                font.pixelSize: 11
                color: palette.placeholderText
            }
        }
        ToolButton {
            text: row.isFavorite ? "★" : "☆"
            Accessible.name: row.isFavorite ? "Aus Favoriten entfernen" : "Zu Favoriten hinzufügen"
            onClicked: workspace.toggleFavorite(row.appId)
        }
    }
}
