<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>Corvane::Application</name>
    <message>
        <source>Debug</source>
        <translation>Fehlersuche</translation>
    </message>
    <message>
        <source>Information</source>
        <translation>Hinweis</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>Warnung</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>Critical</source>
        <translation>Kritisch</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Keine</translation>
    </message>
</context>
</TS>
