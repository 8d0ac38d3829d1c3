import QtQuick 2.15
import QtQuick.Window 2.15

Window {
    id: panel

    required property QtObject input // an InputAdapter
    required property string screenshot // a file; may be empty

    width: 480
    height: 200
    visible: true
    title: "Front panel"

    // A click of a deferred key is a press and a release at once. It is to be seen nevertheless.
    Timer {
        id: afterglow
        interval: 250
    }

    Connections {
        target: panel.input
        function onChanged() {
            if (!panel.input.down)
                afterglow.restart()
            if (panel.screenshot)
                page.grabToImage(picture => picture.saveToFile(panel.screenshot)
                                 || console.error("cannot write " + panel.screenshot))
        }
    }

    Rectangle {
        id: page

        anchors.fill: parent
        color: "#22262b"

        Rectangle {
            x: 20
            y: 20
            width: 440
            height: 76
            color: "black"

            Text {
                x: 16
                y: 8
                font.pixelSize: 28
                color: "#7ce0ff"
                text: panel.input.command || "Press a key"
            }
            Text {
                x: 16
                y: 46
                font.pixelSize: 15
                color: "#7ce0ff"
                text: panel.input.state
            }
        }

        Row {
            x: 20
            y: 116
            spacing: 10

            Repeater {
                model: [
                    { command: "Power", label: "Power" },
                    { command: "VolumeDown", label: "Vol -" },
                    { command: "VolumeUp", label: "Vol +" },
                    { command: "Stop", label: "Stop" },
                    { command: "StartPlay", label: "Play" }
                ]

                Rectangle {
                    id: key

                    required property var modelData
                    readonly property bool lit: (panel.input.down || afterglow.running)
                                                && panel.input.command === modelData.command

                    width: 80
                    height: 64
                    radius: 8
                    color: lit ? "#ffb300" : "#3d444d"

                    Text {
                        anchors.centerIn: parent
                        font.pixelSize: 15
                        color: key.lit ? "black" : "white"
                        text: key.modelData.label
                    }
                }
            }
        }
    }
}
