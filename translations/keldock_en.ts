<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>CountdownOverlay</name>
    <message numerus="yes">
        <source>Recording starts in %n second(s)</source>
        <translation>
            <numerusform>Recording starts in %n second</numerusform>
            <numerusform>Recording starts in %n seconds</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>PlaybackWindow</name>
    <message numerus="yes">
        <source>The metadata of this recording is missing or damaged. It plays at %n frame(s) per second.</source>
        <translation>
            <numerusform>The metadata of this recording is missing or damaged. It plays at %n frame per second.</numerusform>
            <numerusform>The metadata of this recording is missing or damaged. It plays at %n frames per second.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>RecordingController</name>
    <message numerus="yes">
        <source>The disk is almost full: %1 left, enough for about %n minute(s).</source>
        <translation>
            <numerusform>The disk is almost full: %1 left, enough for about %n minute.</numerusform>
            <numerusform>The disk is almost full: %1 left, enough for about %n minutes.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>RecordingsWindow</name>
    <message numerus="yes">
        <source>%n recording(s) moved to the trash.</source>
        <translation>
            <numerusform>%n recording moved to the trash.</numerusform>
            <numerusform>%n recordings moved to the trash.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n recording(s) cannot be moved to the trash. Delete permanently?</source>
        <translation>
            <numerusform>%n recording cannot be moved to the trash. Delete it permanently?</numerusform>
            <numerusform>%n recordings cannot be moved to the trash. Delete them permanently?</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Open %n recording(s), each in its own window?</source>
        <translation>
            <numerusform>Open %n recording, each in its own window?</numerusform>
            <numerusform>Open %n recordings, each in its own window?</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>SettingsDialog</name>
    <message numerus="yes">
        <source>After %n second(s)</source>
        <translation>
            <numerusform>After %n second</numerusform>
            <numerusform>After %n seconds</numerusform>
        </translation>
    </message>
</context>
</TS>
