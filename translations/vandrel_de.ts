<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en_US">
<context>
    <name>VCLineEdit</name>
    <message>
        <source>Value out of range</source>
        <translation>Wert außerhalb des Bereichs</translation>
    </message>
    <message>
        <source>Invalid input</source>
        <translation>Ungültige Eingabe</translation>
    </message>
</context>
<context>
    <name>VCScrollButtons</name>
    <message>
        <source>Up</source>
        <translation>Auf</translation>
    </message>
    <message>
        <source>Down</source>
        <translation>Ab</translation>
    </message>
    <message>
        <source>Left</source>
        <translation>Links</translation>
    </message>
    <message>
        <source>Right</source>
        <translation>Rechts</translation>
    </message>
</context>
<context>
    <name>VCUndo</name>
    <message>
        <source>Undo</source>
        <translation>Rückgängig</translation>
    </message>
</context>
</TS>
