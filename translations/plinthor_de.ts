<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en_US">
<context>
    <name>Plinthor</name>
    <message>
        <source>Decimal degrees</source>
        <translation>Dezimalgrad</translation>
    </message>
    <message>
        <source>Degrees, minutes, seconds</source>
        <translation>Grad, Minuten, Sekunden</translation>
    </message>
    <message>
        <source>Degrees, minutes, whole seconds</source>
        <translation>Grad, Minuten, ganze Sekunden</translation>
    </message>
    <message>
        <source>UTM</source>
        <translation>UTM</translation>
    </message>
    <message>
        <source>MGRS</source>
        <translation>MGRS</translation>
    </message>
    <message>
        <source>RT 90</source>
        <translation>RT 90</translation>
    </message>
    <message>
        <source>SWEREF 99 TM</source>
        <translation>SWEREF 99 TM</translation>
    </message>
</context>
<context>
    <name>basecontrols::CoordEdit</name>
    <message>
        <source>&amp;Copy</source>
        <translation>&amp;Kopieren</translation>
    </message>
    <message>
        <source>&amp;Paste</source>
        <translation>&amp;Einfügen</translation>
    </message>
</context>
</TS>
