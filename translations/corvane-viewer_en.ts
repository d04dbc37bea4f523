<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en">
<context>
    <name>Corvane::Viewer::FileOpening</name>
    <message numerus="yes">
        <source>Open all %n image(s) of %1?</source>
        <translation>
            <numerusform>Open the %n image of %1?</numerusform>
            <numerusform>Open all %n images of %1?</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::OpenFailures</name>
    <message numerus="yes">
        <source>and %n more</source>
        <translation>
            <numerusform>and %n more</numerusform>
            <numerusform>and %n more</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::Reloading</name>
    <message numerus="yes">
        <source>%n files have changed.</source>
        <translation>
            <numerusform>%n file has changed.</numerusform>
            <numerusform>%n files have changed.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::SessionKeeper</name>
    <message numerus="yes">
        <source>The program did not end in order. %n map(s) can be restored.</source>
        <translation>
            <numerusform>The program did not end in order. %n map can be restored.</numerusform>
            <numerusform>The program did not end in order. %n maps can be restored.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::SourceCommands</name>
    <message numerus="yes">
        <source>%n layers are not reachable</source>
        <translation>
            <numerusform>%n layer is not reachable</numerusform>
            <numerusform>%n layers are not reachable</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::TaskBar</name>
    <message numerus="yes">
        <source>%1 (and %n more)</source>
        <translation>
            <numerusform>%1 (and %n more)</numerusform>
            <numerusform>%1 (and %n more)</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>LayerSteps</name>
    <message numerus="yes">
        <source>Delete %n Layer(s)</source>
        <translation>
            <numerusform>Delete %n Layer</numerusform>
            <numerusform>Delete %n Layers</numerusform>
        </translation>
    </message>
</context>
</TS>
