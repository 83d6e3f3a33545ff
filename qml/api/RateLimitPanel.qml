import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// Apple's hourly budget as the last response reported it.
GroupBox {
    title: "Stundenbudget bei Apple"

    ColumnLayout {
        anchors.fill: parent
        spacing: 4
        Label {
            Layout.fillWidth: true
            visible: !rateLimit.hasData
            text: rateLimit.emptyText
            wrapMode: Text.Wrap
        }
        Label {
            visible: rateLimit.hasData
            text: rateLimit.remainingText
        }
        ProgressBar {
            Layout.fillWidth: true
            visible: rateLimit.hasData
            value: rateLimit.fraction
            Accessible.name: rateLimit.remainingText
        }
        Label {
            visible: rateLimit.hasData
            text: rateLimit.updatedAtText
            color: palette.placeholderText
        }
        Label {
            Layout.fillWidth: true
            text: rateLimit.explanation
            wrapMode: Text.Wrap
            color: palette.placeholderText
        }
    }
}
