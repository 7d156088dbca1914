<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en_US">
<context>
    <name>VCDateTimeEdit</name>
    <message>
        <source>Days</source>
        <translation>Tage</translation>
    </message>
</context>
<context>
    <name>VCLED</name>
    <message>
        <source>LED</source>
        <translation>LED</translation>
    </message>
</context>
<context>
    <name>VCLineEdit</name>
    <message>
        <source>Input Error</source>
        <translation>Eingabefehler</translation>
    </message>
    <message>
        <source>Input exceeds maximum, value set to %1.
Allowed range from %2 to %3.</source>
        <translation>Eingabe überschreitet das Maximum, Wert auf %1 gesetzt.
Zulässiger Bereich von %2 bis %3.</translation>
    </message>
    <message>
        <source>Range Check Error</source>
        <translation>Bereichsfehler</translation>
    </message>
    <message>
        <source>Input underruns minimum, value set to %1.
Allowed range from %2 to %3.</source>
        <translation>Eingabe unterschreitet das Minimum, Wert auf %1 gesetzt.
Zulässiger Bereich von %2 bis %3.</translation>
    </message>
</context>
<context>
    <name>VCMeasurementWidget</name>
    <message>
        <source>Bandwidth</source>
        <translation>Bandbreite</translation>
    </message>
    <message>
        <source>Offset</source>
        <translation>Ablage</translation>
    </message>
    <message>
        <source>Field Strength</source>
        <translation>Feldstärke</translation>
    </message>
    <message>
        <source>Level</source>
        <translation>Pegel</translation>
    </message>
    <message>
        <source>Quality</source>
        <translation>Qualität</translation>
    </message>
    <message>
        <source>Azimuth</source>
        <translation>Azimut</translation>
    </message>
    <message>
        <source>Elevation</source>
        <translation>Elevation</translation>
    </message>
</context>
<context>
    <name>VCMultipleCheck</name>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
</context>
<context>
    <name>VCScrollButtons</name>
    <message>
        <source>Move Left</source>
        <translation>Nach links</translation>
    </message>
    <message>
        <source>Move Page Left</source>
        <translation>Seite nach links</translation>
    </message>
    <message>
        <source>Move Page Right</source>
        <translation>Seite nach rechts</translation>
    </message>
    <message>
        <source>Move Right</source>
        <translation>Nach rechts</translation>
    </message>
    <message>
        <source>Move Up</source>
        <translation>Nach oben</translation>
    </message>
    <message>
        <source>Move Page Up</source>
        <translation>Seite nach oben</translation>
    </message>
    <message>
        <source>Move Page Down</source>
        <translation>Seite nach unten</translation>
    </message>
    <message>
        <source>Move Down</source>
        <translation>Nach unten</translation>
    </message>
</context>
<context>
    <name>VCUndo</name>
    <message>
        <source>Undo</source>
        <translation>Rückgängig</translation>
    </message>
</context>
<context>
    <name>vandrel::ValueStatus</name>
    <message>
        <source>not found</source>
        <translation>nicht gefunden</translation>
    </message>
    <message>
        <source>removed</source>
        <translation>entfernt</translation>
    </message>
    <message>
        <source>disabled</source>
        <translation>gesperrt</translation>
    </message>
    <message>
        <source>(no path)</source>
        <translation>(kein Pfad)</translation>
    </message>
</context>
</TS>
