<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en">
<context>
    <name>Corvane::Map::ImageServerPropertiesPage</name>
    <message numerus="yes">
        <source>%1 x %1 pixels, %n level(s)</source>
        <translation>
            <numerusform>%1 x %1 pixels, %n level</numerusform>
            <numerusform>%1 x %1 pixels, %n levels</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n band(s) of %1, %2</source>
        <translation>
            <numerusform>%n band of %1, %2</numerusform>
            <numerusform>%n bands of %1, %2</numerusform>
        </translation>
    </message>
</context>
</TS>
