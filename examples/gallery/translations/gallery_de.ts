<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>Gallery</name>
    <message>
        <source>Slow</source>
        <translation>Langsam</translation>
    </message>
    <message>
        <source>Fast</source>
        <translation>Schnell</translation>
    </message>
    <message>
        <source>Noise blanker</source>
        <translation>Störaustaster</translation>
    </message>
    <message>
        <source>Notch</source>
        <translation>Kerbfilter</translation>
    </message>
    <message>
        <source>Preamp</source>
        <translation>Vorverstärker</translation>
    </message>
    <message>
        <source>Off</source>
        <translation>Aus</translation>
    </message>
    <message>
        <source>On</source>
        <translation>Ein</translation>
    </message>
    <message>
        <source>Carrier</source>
        <translation>Träger</translation>
    </message>
    <message>
        <source>Overload</source>
        <translation>Übersteuerung</translation>
    </message>
    <message>
        <source>Scan stops</source>
        <translation>Suchlauf-Stopps</translation>
    </message>
    <message>
        <source>Squelch</source>
        <translation>Rauschsperre</translation>
    </message>
    <message>
        <source>Full</source>
        <translation>Gesamt</translation>
    </message>
    <message>
        <source>Weak signals</source>
        <translation>Schwache Signale</translation>
    </message>
    <message>
        <source>Strong signals</source>
        <translation>Starke Signale</translation>
    </message>
    <message>
        <source>LW</source>
        <translation>LW</translation>
    </message>
    <message>
        <source>MW</source>
        <translation>MW</translation>
    </message>
    <message>
        <source>SW</source>
        <translation>KW</translation>
    </message>
    <message>
        <source>VHF</source>
        <translation>UKW</translation>
    </message>
    <message>
        <source>none</source>
        <translation>keine</translation>
    </message>
    <message>
        <source>several</source>
        <translation>mehrere</translation>
    </message>
</context>
<context>
    <name>GalleryWindow</name>
    <message numerus="yes">
        <source>… and %n older</source>
        <translation>
            <numerusform>… und %n ältere</numerusform>
            <numerusform>… und %n ältere</numerusform>
        </translation>
    </message>
    <message>
        <source>Nothing to undo yet.</source>
        <translation>Noch nichts rückgängig zu machen.</translation>
    </message>
    <message>
        <source>A click switches or cycles a value. Every click here is an edit that the undo button takes back, newest first; the list under it shows what comes next.</source>
        <translation>Ein Klick schaltet einen Wert um oder weiter. Jeder Klick hier ist eine Änderung, die die Schaltfläche Rückgängig zurücknimmt, die neueste zuerst; die Liste darunter zeigt, was als Nächstes kommt.</translation>
    </message>
    <message>
        <source>Check boxes</source>
        <translation>Kontrollkästchen</translation>
    </message>
    <message>
        <source>−20 dB</source>
        <translation>−20 dB</translation>
    </message>
    <message>
        <source>Takes 20 dB off the antenna signal</source>
        <translation>Dämpft das Antennensignal um 20 dB</translation>
    </message>
    <message>
        <source>Attenuator</source>
        <translation>Abschwächer</translation>
    </message>
    <message>
        <source>Running</source>
        <translation>Läuft</translation>
    </message>
    <message>
        <source>Let the receiver scan its band; turning the dial stops it</source>
        <translation>Den Empfänger sein Band absuchen lassen; Drehen an der Abstimmung hält den Suchlauf an</translation>
    </message>
    <message>
        <source>Scan</source>
        <translation>Suchlauf</translation>
    </message>
    <message>
        <source>Fast</source>
        <translation>Schnell</translation>
    </message>
    <message>
        <source>Checked while the AGC selection stands on Fast; follows the AGC button</source>
        <translation>Angehakt, solange die AGC-Auswahl auf Schnell steht; folgt der AGC-Schaltfläche</translation>
    </message>
    <message>
        <source>AGC</source>
        <translation>AGC</translation>
    </message>
    <message>
        <source>Noise blanker</source>
        <translation>Störaustaster</translation>
    </message>
    <message>
        <source>Notch</source>
        <translation>Kerbfilter</translation>
    </message>
    <message>
        <source>Preamp</source>
        <translation>Vorverstärker</translation>
    </message>
    <message>
        <source>One item of the options</source>
        <translation>Ein Eintrag der Optionen</translation>
    </message>
    <message>
        <source>Options</source>
        <translation>Optionen</translation>
    </message>
    <message>
        <source>Buttons</source>
        <translation>Schaltflächen</translation>
    </message>
    <message>
        <source>Click for the next mode; the mode brings its filter</source>
        <translation>Klicken für den nächsten Modus; der Modus bringt sein Filter mit</translation>
    </message>
    <message>
        <source>Mode</source>
        <translation>Modus</translation>
    </message>
    <message>
        <source>Automatic gain control: up is slow, down is fast</source>
        <translation>Automatische Verstärkungsregelung: oben langsam, unten schnell</translation>
    </message>
    <message>
        <source>Softer; hold to keep going</source>
        <translation>Leiser; gedrückt halten zum Weiterregeln</translation>
    </message>
    <message>
        <source>Louder; hold to keep going</source>
        <translation>Lauter; gedrückt halten zum Weiterregeln</translation>
    </message>
    <message>
        <source>Volume</source>
        <translation>Lautstärke</translation>
    </message>
    <message>
        <source>1 kHz down; hold to sweep</source>
        <translation>1 kHz abwärts; gedrückt halten zum Durchstimmen</translation>
    </message>
    <message>
        <source>1 kHz up; hold to sweep</source>
        <translation>1 kHz aufwärts; gedrückt halten zum Durchstimmen</translation>
    </message>
    <message>
        <source>Tuning</source>
        <translation>Abstimmung</translation>
    </message>
    <message>
        <source>Compounds</source>
        <translation>Kombinationen</translation>
    </message>
    <message>
        <source>Switch to the %1 band</source>
        <translation>Auf das Band %1 umschalten</translation>
    </message>
    <message>
        <source>Band</source>
        <translation>Band</translation>
    </message>
    <message>
        <source>Preselector</source>
        <translation>Preselektor</translation>
    </message>
    <message>
        <source>The preselector&apos;s band; its check box switches the preselector on and off</source>
        <translation>Das Band des Preselektors; sein Kontrollkästchen schaltet den Preselektor ein und aus</translation>
    </message>
    <message>
        <source>Band group</source>
        <translation>Bandgruppe</translation>
    </message>
    <message>
        <source>Click to toggle within the pair; the arrow picks the pair</source>
        <translation>Klicken wechselt innerhalb des Paars; der Pfeil wählt das Paar</translation>
    </message>
    <message>
        <source>Mode pair</source>
        <translation>Moduspaar</translation>
    </message>
    <message>
        <source>Tuning step: click for the next, or pick from the arrow&apos;s menu</source>
        <translation>Abstimmschritt: Klicken für den nächsten, oder aus dem Menü des Pfeils wählen</translation>
    </message>
    <message>
        <source>Step</source>
        <translation>Schritt</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Rückgängig</translation>
    </message>
    <message>
        <source>Each field writes its value at its own moment, noted under it. The readouts on the right show what reached the value.</source>
        <translation>Jedes Feld schreibt seinen Wert zu seinem eigenen Zeitpunkt, der darunter vermerkt ist. Die Anzeigen rechts zeigen, was beim Wert angekommen ist.</translation>
    </message>
    <message>
        <source>Typed numbers</source>
        <translation>Eingegebene Zahlen</translation>
    </message>
    <message>
        <source>The tuned frequency in MHz, or in kHz with a k behind the number. Typing here stops the scan, so that the dial holds still.</source>
        <translation>Die eingestellte Frequenz in MHz, oder in kHz mit einem k hinter der Zahl. Eine Eingabe hier hält den Suchlauf an, damit die Abstimmung stillsteht.</translation>
    </message>
    <message>
        <source>Frequency</source>
        <translation>Frequenz</translation>
    </message>
    <message>
        <source>Writes on Return or focus loss; out of range, warns and clamps.</source>
        <translation>Schreibt bei Eingabetaste oder Fokusverlust; außerhalb des Bereichs mit Warnung und Begrenzung.</translation>
    </message>
    <message>
        <source>The carrier opens above this level, in dBm</source>
        <translation>Der Träger öffnet oberhalb dieses Pegels, in dBm</translation>
    </message>
    <message>
        <source>Squelch</source>
        <translation>Rauschsperre</translation>
    </message>
    <message>
        <source>Writes on Return or focus loss; the unit may be left out.</source>
        <translation>Schreibt bei Eingabetaste oder Fokusverlust; die Einheit darf fehlen.</translation>
    </message>
    <message>
        <source>Stepped numbers</source>
        <translation>Gestufte Zahlen</translation>
    </message>
    <message>
        <source>Receiver gain: arrows, Up and Down, Page Up and Page Down or the wheel</source>
        <translation>Verstärkung des Empfängers: Pfeile, Auf und Ab, Bild auf und Bild ab oder das Mausrad</translation>
    </message>
    <message>
        <source>Gain</source>
        <translation>Verstärkung</translation>
    </message>
    <message>
        <source>Steps write 200 ms after the last one, as one undoable edit.</source>
        <translation>Schritte schreiben 200 ms nach dem letzten, als eine rückgängig machbare Änderung.</translation>
    </message>
    <message>
        <source>Each click writes at once: 1 % a line, 10 % a page; held, it repeats.</source>
        <translation>Jeder Klick schreibt sofort: 1 % je Zeile, 10 % je Seite; gehalten wiederholt er sich.</translation>
    </message>
    <message>
        <source>Text</source>
        <translation>Text</translation>
    </message>
    <message>
        <source>Notes of the watch</source>
        <translation>Notizen zur Wache</translation>
    </message>
    <message>
        <source>Notes</source>
        <translation>Notizen</translation>
    </message>
    <message>
        <source>Return starts a new line; writes when the field loses focus.</source>
        <translation>Die Eingabetaste beginnt eine neue Zeile; schreibt, wenn das Feld den Fokus verliert.</translation>
    </message>
    <message>
        <source>This page is a form drawn in Qt Designer. Its controls came from the library&apos;s Designer plugin and were bound by their valuePath properties with one call, vandrel::BindForm(); the page has no other code.</source>
        <translation>Diese Seite ist ein in Qt Designer gezeichnetes Formular. Ihre Bedienelemente stammen aus dem Designer-Plugin der Bibliothek und wurden über ihre valuePath-Eigenschaften mit einem Aufruf gebunden, vandrel::BindForm(); die Seite hat keinen weiteren Code.</translation>
    </message>
    <message>
        <source>The form could not be loaded: %1</source>
        <translation>Das Formular konnte nicht geladen werden: %1</translation>
    </message>
    <message>
        <source>Bindings made from the form: %1.</source>
        <translation>Aus dem Formular erstellte Bindungen: %1.</translation>
    </message>
    <message>
        <source>Not bound: %1</source>
        <translation>Nicht gebunden: %1</translation>
    </message>
    <message>
        <source>Simulated receiver</source>
        <translation>Simulierter Empfänger</translation>
    </message>
    <message>
        <source>Sliders</source>
        <translation>Schieberegler</translation>
    </message>
    <message>
        <source>Buttons and undo</source>
        <translation>Schaltflächen und Rückgängig</translation>
    </message>
    <message>
        <source>Station</source>
        <translation>Standort</translation>
    </message>
    <message>
        <source>Entry fields</source>
        <translation>Eingabefelder</translation>
    </message>
    <message>
        <source>Measurement</source>
        <translation>Messung</translation>
    </message>
    <message>
        <source>Selections</source>
        <translation>Auswahl</translation>
    </message>
    <message>
        <source>Drawn in Designer</source>
        <translation>In Designer gezeichnet</translation>
    </message>
    <message>
        <source>open</source>
        <translation>offen</translation>
    </message>
    <message>
        <source>Level</source>
        <translation>Pegel</translation>
    </message>
    <message>
        <source>Carrier</source>
        <translation>Träger</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>Status</translation>
    </message>
    <message>
        <source>Every control here is bound to a value of the receiver. Drag one and watch its row glow in the value tree; disable or remove the value there and watch the control.</source>
        <translation>Jedes Bedienelement hier ist an einen Wert des Empfängers gebunden. Ziehen Sie eines und beobachten Sie, wie seine Zeile im Werte-Baum aufleuchtet; deaktivieren oder entfernen Sie den Wert dort und beobachten Sie das Bedienelement.</translation>
    </message>
    <message>
        <source>Tuning in kHz: the arrows step 1 kHz, the trough 100 kHz</source>
        <translation>Abstimmung in kHz: die Pfeile in Schritten von 1 kHz, die Leiste von 100 kHz</translation>
    </message>
    <message>
        <source>Where the scan stands in its band; moving it stops the scan</source>
        <translation>Wo der Suchlauf in seinem Band steht; Verschieben hält den Suchlauf an</translation>
    </message>
    <message>
        <source>Scan position</source>
        <translation>Suchlaufposition</translation>
    </message>
    <message>
        <source>Receiver and scan</source>
        <translation>Empfänger und Suchlauf</translation>
    </message>
    <message>
        <source>The carrier opens above this level</source>
        <translation>Der Träger öffnet oberhalb dieses Pegels</translation>
    </message>
    <message>
        <source>Scan speed</source>
        <translation>Suchlauftempo</translation>
    </message>
    <message>
        <source>%/step</source>
        <translation>%/Schritt</translation>
    </message>
    <message>
        <source>Hold on carrier</source>
        <translation>Halt auf Träger</translation>
    </message>
    <message>
        <source>How long the scan stays on a carrier</source>
        <translation>Wie lange der Suchlauf auf einem Träger verweilt</translation>
    </message>
    <message>
        <source>Meters</source>
        <translation>Messanzeigen</translation>
    </message>
    <message>
        <source>The signal meter: the instrument moves it, and it is yours to pull</source>
        <translation>Die Signalanzeige: das Instrument bewegt sie, und Sie können daran ziehen</translation>
    </message>
    <message>
        <source>Value tree</source>
        <translation>Werte-Baum</translation>
    </message>
    <message>
        <source>Each row is a value under /receiver, live. Changes glow as they arrive. Double-click a state or a value to edit it, or select rows and use the buttons.</source>
        <translation>Jede Zeile ist ein Wert unter /receiver, live. Änderungen leuchten beim Eintreffen auf. Doppelklicken Sie auf einen Zustand oder einen Wert, um ihn zu bearbeiten, oder wählen Sie Zeilen aus und verwenden Sie die Schaltflächen.</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>Instrument</source>
        <translation>Instrument</translation>
    </message>
    <message>
        <source>Let the receiver scan its band (writes /receiver/scan/active)</source>
        <translation>Den Empfänger sein Band absuchen lassen (schreibt /receiver/scan/active)</translation>
    </message>
    <message>
        <source>Pause simulation</source>
        <translation>Simulation anhalten</translation>
    </message>
    <message>
        <source>Restore instrument</source>
        <translation>Instrument wiederherstellen</translation>
    </message>
    <message>
        <source>Show the gallery in %1</source>
        <translation>Die Galerie auf %1 anzeigen</translation>
    </message>
    <message>
        <source>seed %1</source>
        <translation>Startwert %1</translation>
    </message>
    <message>
        <source>Ready: the receiver is live</source>
        <translation>Bereit: der Empfänger läuft</translation>
    </message>
    <message>
        <source>1 value</source>
        <translation>1 Wert</translation>
    </message>
    <message>
        <source>%1 values</source>
        <translation>%1 Werte</translation>
    </message>
    <message>
        <source>t = %1 s</source>
        <translation>t = %1 s</translation>
    </message>
    <message>
        <source>Restored 1 value; all values enabled</source>
        <translation>1 Wert wiederhergestellt; alle Werte aktiviert</translation>
    </message>
    <message>
        <source>Restored %1 values; all values enabled</source>
        <translation>%1 Werte wiederhergestellt; alle Werte aktiviert</translation>
    </message>
    <message>
        <source>Nothing was missing; all values enabled</source>
        <translation>Nichts fehlte; alle Werte aktiviert</translation>
    </message>
    <message>
        <source>Results, lamps and labels follow the receiver as it scans. Tick &quot;Level invalid&quot; and the level shows &quot;- - -&quot;, or its last number in gray; click the recording lamp to switch it.</source>
        <translation>Ergebnisse, Lampen und Beschriftungen folgen dem Empfänger beim Suchlauf. Haken Sie &quot;Pegel ungültig&quot; an, und der Pegel zeigt &quot;- - -&quot; oder seine letzte Zahl in Grau; klicken Sie auf die Aufnahmelampe, um sie umzuschalten.</translation>
    </message>
    <message>
        <source>Results</source>
        <translation>Ergebnisse</translation>
    </message>
    <message>
        <source>Alarms</source>
        <translation>Alarme</translation>
    </message>
    <message>
        <source>Overload</source>
        <translation>Übersteuerung</translation>
    </message>
    <message>
        <source>Recording (click the lamp)</source>
        <translation>Aufnahme (Lampe anklicken)</translation>
    </message>
    <message>
        <source>Labels</source>
        <translation>Beschriftungen</translation>
    </message>
    <message>
        <source>Level invalid</source>
        <translation>Pegel ungültig</translation>
    </message>
    <message>
        <source>Above squelch</source>
        <translation>Über Rauschsperre</translation>
    </message>
    <message>
        <source>Level, no value</source>
        <translation>Pegel, kein Wert</translation>
    </message>
    <message>
        <source>Level, last value gray</source>
        <translation>Pegel, letzter Wert grau</translation>
    </message>
    <message>
        <source>Stations found by the scan</source>
        <translation>Vom Suchlauf gefundene Stationen</translation>
    </message>
    <message>
        <source>Acquisition</source>
        <translation>Erfassung</translation>
    </message>
    <message>
        <source>Started</source>
        <translation>Gestartet</translation>
    </message>
    <message>
        <source>Running for</source>
        <translation>Läuft seit</translation>
    </message>
    <message>
        <source>Hold</source>
        <translation>Halten</translation>
    </message>
    <message>
        <source>Averaging</source>
        <translation>Mittelung</translation>
    </message>
    <message>
        <source>Menus</source>
        <translation>Menüs</translation>
    </message>
    <message>
        <source>Markers...</source>
        <translation>Marker...</translation>
    </message>
    <message>
        <source>Markers</source>
        <translation>Marker</translation>
    </message>
    <message>
        <source>%1 %2 (%3)</source>
        <translation>%1 %2 (%3)</translation>
    </message>
    <message>
        <source>Right-click for the unit and the range</source>
        <translation>Rechtsklick für Einheit und Bereich</translation>
    </message>
    <message>
        <source>Reset view</source>
        <translation>Ansicht zurücksetzen</translation>
    </message>
    <message>
        <source>Level (right-click)</source>
        <translation>Pegel (Rechtsklick)</translation>
    </message>
    <message>
        <source>Positions are typed in the format shown and taken with Return. Right-click a position for another format: both fields show it, since they share the application&apos;s position format.</source>
        <translation>Positionen werden im angezeigten Format eingegeben und mit der Eingabetaste übernommen. Klicken Sie mit der rechten Maustaste auf eine Position für ein anderes Format: beide Felder zeigen es, da sie das Positionsformat der Anwendung teilen.</translation>
    </message>
    <message>
        <source>Station position</source>
        <translation>Stationsposition</translation>
    </message>
    <message>
        <source>Receiving site</source>
        <translation>Empfangsort</translation>
    </message>
    <message>
        <source>Where the receiver stands</source>
        <translation>Standort des Empfängers</translation>
    </message>
    <message>
        <source>Reference transmitter</source>
        <translation>Referenzsender</translation>
    </message>
    <message>
        <source>A transmitter of known position, for bearings and propagation</source>
        <translation>Ein Sender mit bekannter Position, für Peilungen und Ausbreitung</translation>
    </message>
    <message>
        <source>The application&apos;s position format, %1</source>
        <translation>Das Positionsformat der Anwendung, %1</translation>
    </message>
    <message>
        <source>Format</source>
        <translation>Format</translation>
    </message>
    <message>
        <source>Bandwidth</source>
        <translation>Bandbreite</translation>
    </message>
    <message>
        <source>Filter</source>
        <translation>Filter</translation>
    </message>
    <message>
        <source>Pick a mode and the receiver switches its filter. A filter picked in the second list waits for &quot;Apply&quot;. The tool buttons open menus: the first holds the filter and the AGC, with &quot;Reset&quot; at the end, the second the options with their check marks; the third flips the AGC at each press. The channel list is the band monitor&apos;s: it marks the channels it hears as it passes. The menu bar&apos;s Hold and Averaging switch the view, &quot;Markers...&quot; opens a menu made from the display&apos;s markers, and a right-click on the level picks its unit and range.</source>
        <translation>Wählen Sie einen Modus, und der Empfänger schaltet sein Filter um. Ein in der zweiten Liste gewähltes Filter wartet auf &quot;Übernehmen&quot;. Die Werkzeugschaltflächen öffnen Menüs: das erste enthält das Filter und die AGC, mit &quot;Zurücksetzen&quot; am Ende, das zweite die Optionen mit ihren Häkchen; das dritte schaltet die AGC bei jedem Druck um. Die Kanalliste gehört zum Bandmonitor: er markiert die Kanäle, die er im Vorbeilaufen hört. Halten und Mittelung in der Menüleiste schalten die Ansicht, &quot;Marker...&quot; öffnet ein aus den Markern der Anzeige erzeugtes Menü, und ein Rechtsklick auf den Pegel wählt dessen Einheit und Bereich.</translation>
    </message>
    <message>
        <source>Drop-down lists</source>
        <translation>Aufklapplisten</translation>
    </message>
    <message>
        <source>Apply</source>
        <translation>Übernehmen</translation>
    </message>
    <message>
        <source>Menu buttons</source>
        <translation>Menüschaltflächen</translation>
    </message>
    <message>
        <source>Reset</source>
        <translation>Zurücksetzen</translation>
    </message>
    <message>
        <source>Filter and AGC</source>
        <translation>Filter und AGC</translation>
    </message>
    <message>
        <source>AGC (press flips)</source>
        <translation>AGC (Druck schaltet um)</translation>
    </message>
    <message>
        <source>Band monitor</source>
        <translation>Bandmonitor</translation>
    </message>
    <message>
        <source>%1 of %2 channels heard</source>
        <translation>%1 von %2 Kanälen gehört</translation>
    </message>
    <message>
        <source>Switches %1</source>
        <translation>Schaltet %1</translation>
    </message>
    <message>
        <source>Scan stopped: you are editing the frequency</source>
        <translation>Suchlauf angehalten: Sie bearbeiten die Frequenz</translation>
    </message>
    <message>
        <source>Bring back every removed value as the instrument makes it and enable every value (Ctrl+R)</source>
        <translation>Jeden entfernten Wert so zurückholen, wie das Instrument ihn anlegt, und alle Werte aktivieren (Strg+R)</translation>
    </message>
    <message>
        <source>Resume simulation</source>
        <translation>Simulation fortsetzen</translation>
    </message>
    <message>
        <source>Hold the instrument still, so that only your edits move values (F5)</source>
        <translation>Das Instrument anhalten, sodass nur Ihre Änderungen Werte bewegen (F5)</translation>
    </message>
    <message>
        <source>Let the instrument run again (F5)</source>
        <translation>Das Instrument wieder laufen lassen (F5)</translation>
    </message>
    <message>
        <source>Restored %1</source>
        <translation>%1 wiederhergestellt</translation>
    </message>
    <message>
        <source>The receiver&apos;s filter: the arrows, the keys Up and Down and the wheel step through the filters; or type a width such as 6k or 2400 (Hz) and press Return. A new mode brings its own.</source>
        <translation>Das Filter des Empfängers: die Pfeile, die Tasten Auf und Ab und das Mausrad schalten durch die Filter; oder tippen Sie eine Breite wie 6k oder 2400 (Hz) und drücken Eingabe. Ein neuer Modus bringt sein eigenes mit.</translation>
    </message>
    <message>
        <source>Reception</source>
        <translation>Empfang</translation>
    </message>
    <message>
        <source>Tuning in kHz: step off a station and back</source>
        <translation>Abstimmung in kHz: neben einen Sender und zurück</translation>
    </message>
    <message>
        <source>The signal level the instrument measures</source>
        <translation>Der Signalpegel, den das Instrument misst</translation>
    </message>
    <message>
        <source>Signal</source>
        <translation>Signal</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <source>Redo</source>
        <translation>Wiederholen</translation>
    </message>
    <message>
        <source>Undo back to</source>
        <translation>Rückgängig bis</translation>
    </message>
    <message>
        <source>Redo up to</source>
        <translation>Wiederholen bis</translation>
    </message>
    <message>
        <source>Nothing to redo</source>
        <translation>Nichts zu wiederholen</translation>
    </message>
    <message>
        <source>Nothing to undo</source>
        <translation>Nichts rückgängig zu machen</translation>
    </message>
    <message>
        <source>Undo %1</source>
        <translation>Rückgängig: %1</translation>
    </message>
    <message>
        <source>Redo %1</source>
        <translation>Wiederholen: %1</translation>
    </message>
</context>
<context>
    <name>ScanForm</name>
    <message>
        <source>Scan</source>
        <translation>Suchlauf</translation>
    </message>
    <message>
        <source>Scanning</source>
        <translation>Suchlauf</translation>
    </message>
    <message>
        <source>Active</source>
        <translation>Aktiv</translation>
    </message>
    <message>
        <source>Starts and stops the scan</source>
        <translation>Startet und stoppt den Suchlauf</translation>
    </message>
    <message>
        <source>From</source>
        <translation>Von</translation>
    </message>
    <message>
        <source>To</source>
        <translation>Bis</translation>
    </message>
    <message>
        <source>Speed</source>
        <translation>Tempo</translation>
    </message>
    <message>
        <source>Last found</source>
        <translation>Zuletzt gefunden</translation>
    </message>
    <message>
        <source>Lit while a carrier is heard</source>
        <translation>Leuchtet, solange ein Träger zu hören ist</translation>
    </message>
    <message>
        <source>Tuning</source>
        <translation>Abstimmung</translation>
    </message>
    <message>
        <source>Mode</source>
        <translation>Modus</translation>
    </message>
    <message>
        <source>Gain</source>
        <translation>Verstärkung</translation>
    </message>
    <message>
        <source>Notes</source>
        <translation>Notizen</translation>
    </message>
</context>
<context>
    <name>ValueTreeModel</name>
    <message>
        <source>choice of %1</source>
        <translation>Auswahl aus %1</translation>
    </message>
    <message>
        <source>set of %1</source>
        <translation>Menge aus %1</translation>
    </message>
    <message>
        <source>limits %1 … %2, step %3</source>
        <translation>Grenzen %1 … %2, Schritt %3</translation>
    </message>
    <message>
        <source>items: %1</source>
        <translation>Einträge: %1</translation>
    </message>
    <message>
        <source>Enabled</source>
        <translation>Aktiviert</translation>
    </message>
    <message>
        <source>Disabled</source>
        <translation>Deaktiviert</translation>
    </message>
    <message>
        <source>Removed</source>
        <translation>Entfernt</translation>
    </message>
    <message>
        <source>Path</source>
        <translation>Pfad</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>Wert</translation>
    </message>
    <message>
        <source>Type</source>
        <translation>Typ</translation>
    </message>
    <message>
        <source>State</source>
        <translation>Zustand</translation>
    </message>
    <message>
        <source>%1
Removed from the tree: Restore brings it back as the instrument makes it</source>
        <translation>%1
Aus dem Baum entfernt: Wiederherstellen holt ihn zurück, wie das Instrument ihn anlegt</translation>
    </message>
</context>
<context>
    <name>ValueTreeView</name>
    <message>
        <source>&amp;Enable</source>
        <translation>&amp;Aktivieren</translation>
    </message>
    <message>
        <source>&amp;Disable</source>
        <translation>&amp;Deaktivieren</translation>
    </message>
    <message>
        <source>&amp;Remove</source>
        <translation>&amp;Entfernen</translation>
    </message>
    <message>
        <source>Disable the selected values: their controls grey out</source>
        <translation>Die ausgewählten Werte deaktivieren: ihre Bedienelemente werden grau</translation>
    </message>
    <message>
        <source>Remove the selected values from the tree: their controls let go of them</source>
        <translation>Die ausgewählten Werte aus dem Baum entfernen: ihre Bedienelemente lassen sie los</translation>
    </message>
    <message>
        <source>Enable</source>
        <translation>Aktivieren</translation>
    </message>
    <message>
        <source>Disable</source>
        <translation>Deaktivieren</translation>
    </message>
    <message>
        <source>Remove from the tree</source>
        <translation>Aus dem Baum entfernen</translation>
    </message>
    <message>
        <source>Copy path</source>
        <translation>Pfad kopieren</translation>
    </message>
    <message>
        <source>Restore as the instrument makes it</source>
        <translation>Wiederherstellen, wie das Instrument ihn anlegt</translation>
    </message>
    <message>
        <source>Enable the selected values; removed ones come back as the instrument makes them</source>
        <translation>Die ausgewählten Werte aktivieren; entfernte kommen zurück, wie das Instrument sie anlegt</translation>
    </message>
</context>
</TS>
