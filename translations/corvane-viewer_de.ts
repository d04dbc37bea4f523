<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de">
<context>
    <name>AngleText</name>
    <message>
        <source>Write a latitude and a longitude, like 52°30&apos;58.7&quot;N 13°22&apos;39.7&quot;E.</source>
        <translation>Schreiben Sie Breite und Länge, etwa 52°30&apos;58.7&quot;N 13°22&apos;39.7&quot;E.</translation>
    </message>
    <message>
        <source>There are two latitudes and no longitude.</source>
        <translation>Das sind zwei Breiten und keine Länge.</translation>
    </message>
    <message>
        <source>There are two longitudes and no latitude.</source>
        <translation>Das sind zwei Längen und keine Breite.</translation>
    </message>
    <message>
        <source>There is no latitude beyond 90 degrees.</source>
        <translation>Es gibt keine Breite über 90 Grad.</translation>
    </message>
    <message>
        <source>There is no longitude beyond 180 degrees.</source>
        <translation>Es gibt keine Länge über 180 Grad.</translation>
    </message>
</context>
<context>
    <name>CellTexts</name>
    <message>
        <source>no data</source>
        <translation>keine Daten</translation>
    </message>
    <message>
        <source>no data: %1 (%2)</source>
        <translation>keine Daten: %1 (%2)</translation>
    </message>
    <message>
        <source>Band %1</source>
        <translation>Kanal %1</translation>
    </message>
</context>
<context>
    <name>CoordinateForm</name>
    <message>
        <source>&amp;East, North of the Map</source>
        <translation>&amp;Ost, Nord der Karte</translation>
    </message>
    <message>
        <source>Map</source>
        <translation>Karte</translation>
    </message>
    <message>
        <source>&amp;Column, Row of the Raster</source>
        <translation>&amp;Spalte, Zeile des Rasters</translation>
    </message>
    <message>
        <source>Cell</source>
        <translation>Zelle</translation>
    </message>
    <message>
        <source>Latitude, Longitude in &amp;Degrees</source>
        <translation>Breite, Länge in &amp;Grad</translation>
    </message>
    <message>
        <source>WGS 84</source>
        <translation>WGS 84</translation>
    </message>
    <message>
        <source>Latitude, Longitude in Degrees and &amp;Minutes</source>
        <translation>Breite, Länge in Grad und &amp;Minuten</translation>
    </message>
    <message>
        <source>Latitude, Longitude in Degrees, Minutes and &amp;Seconds</source>
        <translation>Breite, Länge in Grad, Minuten und Se&amp;kunden</translation>
    </message>
    <message>
        <source>&amp;UTM Zone, East and North</source>
        <translation>&amp;UTM-Zone, Ost und Nord</translation>
    </message>
    <message>
        <source>UTM</source>
        <translation>UTM</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::AppearancePage</name>
    <message>
        <source>Appearance</source>
        <translation>Darstellung</translation>
    </message>
    <message>
        <source>&amp;Language:</source>
        <translation>&amp;Sprache:</translation>
    </message>
    <message>
        <source>&amp;Colors:</source>
        <translation>&amp;Farben:</translation>
    </message>
    <message>
        <source>&amp;Style:</source>
        <translation>S&amp;til:</translation>
    </message>
    <message>
        <source>The language changes when the program starts again.</source>
        <translation>Die Sprache wechselt beim nächsten Start des Programms.</translation>
    </message>
    <message>
        <source>That of the desktop</source>
        <translation>Die der Arbeitsumgebung</translation>
    </message>
    <message>
        <source>Those of the desktop</source>
        <translation>Die der Arbeitsumgebung</translation>
    </message>
    <message>
        <source>Light</source>
        <translation>Hell</translation>
    </message>
    <message>
        <source>Dark</source>
        <translation>Dunkel</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::CellGridPanel</name>
    <message>
        <source>%1 x %1</source>
        <translation>%1 x %1</translation>
    </message>
    <message>
        <source>Copy &amp;headings</source>
        <translation>Ü&amp;berschriften kopieren</translation>
    </message>
    <message>
        <source>Copy the numbers of columns and rows, too</source>
        <translation>Auch die Nummern der Spalten und Zeilen kopieren</translation>
    </message>
    <message>
        <source>Values of the cells</source>
        <translation>Werte der Zellen</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>&amp;Kopieren</translation>
    </message>
    <message>
        <source>Copy &amp;All</source>
        <translation>&amp;Alles kopieren</translation>
    </message>
    <message>
        <source>&amp;Band:</source>
        <translation>Ka&amp;nal:</translation>
    </message>
    <message>
        <source>&amp;Size:</source>
        <translation>&amp;Größe:</translation>
    </message>
    <message>
        <source>Copy all cells, for a spreadsheet</source>
        <translation>Alle Zellen für eine Tabellenkalkulation kopieren</translation>
    </message>
    <message>
        <source>Copy all cells</source>
        <translation>Alle Zellen kopieren</translation>
    </message>
    <message>
        <source>There is no raster at this place.</source>
        <translation>An dieser Stelle ist kein Raster.</translation>
    </message>
    <message>
        <source>There is no map.</source>
        <translation>Es gibt keine Karte.</translation>
    </message>
    <message>
        <source>waiting...</source>
        <translation>wartet ...</translation>
    </message>
    <message>
        <source>no answer: %1</source>
        <translation>keine Antwort: %1</translation>
    </message>
    <message>
        <source>no cell here</source>
        <translation>hier keine Zelle</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::CellTools</name>
    <message>
        <source>Identify</source>
        <translation>Abfragen</translation>
    </message>
    <message>
        <source>Cell Grid</source>
        <translation>Zellraster</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::CommandKeysPage</name>
    <message>
        <source>Shortcuts</source>
        <translation>Tastenkürzel</translation>
    </message>
    <message>
        <source>Search for a command or a key</source>
        <translation>Befehl oder Taste suchen</translation>
    </message>
    <message>
        <source>Commands and their keys</source>
        <translation>Befehle und ihre Tasten</translation>
    </message>
    <message>
        <source>Command</source>
        <translation>Befehl</translation>
    </message>
    <message>
        <source>Key</source>
        <translation>Taste</translation>
    </message>
    <message>
        <source>New &amp;key:</source>
        <translation>Neue &amp;Taste:</translation>
    </message>
    <message>
        <source>New key of the chosen command</source>
        <translation>Neue Taste des gewählten Befehls</translation>
    </message>
    <message>
        <source>&amp;Assign</source>
        <translation>&amp;Zuweisen</translation>
    </message>
    <message>
        <source>&amp;None</source>
        <translation>&amp;Keine</translation>
    </message>
    <message>
        <source>&amp;Usual Key</source>
        <translation>&amp;Übliche Taste</translation>
    </message>
    <message>
        <source>%1 is the key of &quot;%2&quot;, which would lose it.</source>
        <translation>%1 ist die Taste von „%2“ und ginge dort verloren.</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::EditCommands</name>
    <message>
        <source>&amp;Undo</source>
        <translation>&amp;Rückgängig</translation>
    </message>
    <message>
        <source>&amp;Undo %1</source>
        <translation>&amp;Rückgängig: %1</translation>
    </message>
    <message>
        <source>&amp;Redo</source>
        <translation>&amp;Wiederherstellen</translation>
    </message>
    <message>
        <source>&amp;Redo %1</source>
        <translation>&amp;Wiederherstellen: %1</translation>
    </message>
    <message>
        <source>No memory for a picture of the map.</source>
        <translation>Kein Speicher für ein Bild der Karte.</translation>
    </message>
    <message>
        <source>The map is on the clipboard: %1 x %2 pixels.</source>
        <translation>Die Karte ist in der Zwischenablage: %1 x %2 Pixel.</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::FileOpening</name>
    <message>
        <source>Open Folder</source>
        <translation>Ordner öffnen</translation>
    </message>
    <message numerus="yes">
        <source>Open all %n image(s) of %1?</source>
        <translation>
            <numerusform>Das %n Bild von %1 öffnen?</numerusform>
            <numerusform>Alle %n Bilder von %1 öffnen?</numerusform>
        </translation>
    </message>
    <message>
        <source>&amp;Open All</source>
        <translation>Alle ö&amp;ffnen</translation>
    </message>
    <message>
        <source>Fetching %1</source>
        <translation>%1 wird geholt</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::FlickerBar</name>
    <message>
        <source>Changes per second</source>
        <translation>Wechsel je Sekunde</translation>
    </message>
    <message>
        <source> per second</source>
        <translation> je Sekunde</translation>
    </message>
    <message>
        <source>&amp;Pause</source>
        <translation>&amp;Pause</translation>
    </message>
    <message>
        <source>&amp;Flip</source>
        <translation>&amp;Umschalten</translation>
    </message>
    <message>
        <source>&amp;End</source>
        <translation>&amp;Beenden</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::GoToDialog</name>
    <message>
        <source>Go to Coordinate</source>
        <translation>Gehe zu Koordinate</translation>
    </message>
    <message>
        <source>Latitude and longitude, east and north, a UTM place, or a cell as in &quot;col 100 row 200&quot;</source>
        <translation>Breite und Länge, Ost und Nord, eine UTM-Angabe oder eine Zelle wie „col 100 row 200“</translation>
    </message>
    <message>
        <source>52.5163, 13.3777</source>
        <translation>52,5163; 13,3777</translation>
    </message>
    <message>
        <source>&amp;Go</source>
        <translation>&amp;Gehe</translation>
    </message>
    <message>
        <source>&amp;Coordinate:</source>
        <translation>&amp;Koordinate:</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::HelpCommands</name>
    <message>
        <source>User Guide</source>
        <translation>Benutzerhandbuch</translation>
    </message>
    <message>
        <source>The user guide is not installed. Its place is %1.</source>
        <translation>Das Benutzerhandbuch ist nicht installiert. Sein Ort ist %1.</translation>
    </message>
    <message>
        <source>No program is there to show the user guide, which is %1.</source>
        <translation>Kein Programm kann das Benutzerhandbuch %1 zeigen.</translation>
    </message>
    <message>
        <source>User guide: %1</source>
        <translation>Benutzerhandbuch: %1</translation>
    </message>
    <message>
        <source>About</source>
        <translation>Über</translation>
    </message>
    <message>
        <source>%1 %2

Shows georeferenced imagery far larger than memory.</source>
        <translation>%1 %2

Zeigt georeferenzierte Bilder, die weit größer als der Speicher sind.</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::IdentifyPanel</name>
    <message>
        <source>Values of the layers</source>
        <translation>Werte der Ebenen</translation>
    </message>
    <message>
        <source>Layer and band</source>
        <translation>Ebene und Kanal</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>Wert</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>&amp;Kopieren</translation>
    </message>
    <message>
        <source>&amp;Fixed</source>
        <translation>&amp;Fest</translation>
    </message>
    <message>
        <source>Stay at this place instead of following the pointer.
A click into the map does it, too.</source>
        <translation>An dieser Stelle bleiben, statt dem Zeiger zu folgen.
Ein Klick in die Karte tut dasselbe.</translation>
    </message>
    <message>
        <source>Copy all values</source>
        <translation>Alle Werte kopieren</translation>
    </message>
    <message>
        <source>gives no values</source>
        <translation>gibt keine Werte</translation>
    </message>
    <message>
        <source>There is no map.</source>
        <translation>Es gibt keine Karte.</translation>
    </message>
    <message>
        <source>There is no raster at this place.</source>
        <translation>An dieser Stelle ist kein Raster.</translation>
    </message>
    <message>
        <source>waiting...</source>
        <translation>wartet ...</translation>
    </message>
    <message>
        <source>no answer: %1</source>
        <translation>keine Antwort: %1</translation>
    </message>
    <message>
        <source>no cell here</source>
        <translation>hier keine Zelle</translation>
    </message>
    <message>
        <source>column %1, row %2</source>
        <translation>Spalte %1, Zeile %2</translation>
    </message>
    <message>
        <source>%1; %2</source>
        <translation>%1; %2</translation>
    </message>
    <message>
        <source>Layer</source>
        <translation>Ebene</translation>
    </message>
    <message>
        <source>Column</source>
        <translation>Spalte</translation>
    </message>
    <message>
        <source>Row</source>
        <translation>Zeile</translation>
    </message>
    <message>
        <source>Band</source>
        <translation>Kanal</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::KeyListDialog</name>
    <message>
        <source>Keyboard Shortcuts</source>
        <translation>Tastenkürzel</translation>
    </message>
    <message>
        <source>Search for a command or a key</source>
        <translation>Befehl oder Taste suchen</translation>
    </message>
    <message>
        <source>Commands and their keys</source>
        <translation>Befehle und ihre Tasten</translation>
    </message>
    <message>
        <source>Command</source>
        <translation>Befehl</translation>
    </message>
    <message>
        <source>Key</source>
        <translation>Taste</translation>
    </message>
    <message>
        <source>Commands</source>
        <translation>Befehle</translation>
    </message>
    <message>
        <source>In the map</source>
        <translation>In der Karte</translation>
    </message>
    <message>
        <source>Move by half a view</source>
        <translation>Um eine halbe Ansicht verschieben</translation>
    </message>
    <message>
        <source>Zoom in</source>
        <translation>Vergrößern</translation>
    </message>
    <message>
        <source>Zoom out</source>
        <translation>Verkleinern</translation>
    </message>
    <message>
        <source>Show everything</source>
        <translation>Alles zeigen</translation>
    </message>
    <message>
        <source>One cell a pixel</source>
        <translation>Eine Zelle je Pixel</translation>
    </message>
    <message>
        <source>Leave the full screen</source>
        <translation>Vollbild verlassen</translation>
    </message>
    <message>
        <source>Roam</source>
        <translation>Verschieben</translation>
    </message>
    <message>
        <source>drag</source>
        <translation>ziehen</translation>
    </message>
    <message>
        <source>Zoom about the pointer</source>
        <translation>Um den Zeiger zoomen</translation>
    </message>
    <message>
        <source>wheel, double click</source>
        <translation>Rad, Doppelklick</translation>
    </message>
    <message>
        <source>Zoom by dragging</source>
        <translation>Durch Ziehen zoomen</translation>
    </message>
    <message>
        <source>right button or Shift, drag</source>
        <translation>rechte Taste oder Umschalt, ziehen</translation>
    </message>
    <message>
        <source>Zoom to a box</source>
        <translation>Auf einen Rahmen zoomen</translation>
    </message>
    <message>
        <source>Ctrl, drag</source>
        <translation>Strg, ziehen</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::LayerOpener</name>
    <message>
        <source>no plugin reads it</source>
        <translation>kein Plugin liest es</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::LogModel</name>
    <message>
        <source>Time</source>
        <translation>Zeit</translation>
    </message>
    <message>
        <source>Level</source>
        <translation>Stufe</translation>
    </message>
    <message>
        <source>Message</source>
        <translation>Meldung</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::LogPanel</name>
    <message>
        <source>&amp;Level:</source>
        <translation>&amp;Stufe:</translation>
    </message>
    <message>
        <source>Show lines of this level and above</source>
        <translation>Zeilen dieser Stufe und darüber zeigen</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>Search the log</source>
        <translation>Das Protokoll durchsuchen</translation>
    </message>
    <message>
        <source>&amp;Follow</source>
        <translation>&amp;Folgen</translation>
    </message>
    <message>
        <source>Keep the newest line in view</source>
        <translation>Die neueste Zeile im Blick behalten</translation>
    </message>
    <message>
        <source>&amp;Pause</source>
        <translation>&amp;Pause</translation>
    </message>
    <message>
        <source>Let the lines stand still</source>
        <translation>Die Zeilen anhalten</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>&amp;Kopieren</translation>
    </message>
    <message>
        <source>Copy the chosen lines, or all</source>
        <translation>Die gewählten Zeilen kopieren, oder alle</translation>
    </message>
    <message>
        <source>&amp;Save...</source>
        <translation>S&amp;peichern ...</translation>
    </message>
    <message>
        <source>Save the chosen lines, or all</source>
        <translation>Die gewählten Zeilen speichern, oder alle</translation>
    </message>
    <message>
        <source>C&amp;lear</source>
        <translation>&amp;Leeren</translation>
    </message>
    <message>
        <source>Take the lines out of the panel</source>
        <translation>Die Zeilen aus der Anzeige nehmen</translation>
    </message>
    <message>
        <source>Log</source>
        <translation>Protokoll</translation>
    </message>
    <message>
        <source>Save Log</source>
        <translation>Protokoll speichern</translation>
    </message>
    <message>
        <source>Text (*.txt)</source>
        <translation>Text (*.txt)</translation>
    </message>
    <message>
        <source>cannot write %1: %2</source>
        <translation>%1 lässt sich nicht schreiben: %2</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::MapAnnouncer</name>
    <message>
        <source>Scale %1.</source>
        <translation>Maßstab %1.</translation>
    </message>
    <message>
        <source>No spatial reference.</source>
        <translation>Kein räumlicher Bezug.</translation>
    </message>
    <message>
        <source>Spatial reference %1.</source>
        <translation>Räumlicher Bezug %1.</translation>
    </message>
    <message>
        <source>Map %1</source>
        <translation>Karte %1</translation>
    </message>
    <message>
        <source>The keyboard cursor is at %1.</source>
        <translation>Der Tastaturzeiger ist bei %1.</translation>
    </message>
    <message>
        <source>The middle is at %1.</source>
        <translation>Die Mitte ist bei %1.</translation>
    </message>
    <message>
        <source>outside of the image</source>
        <translation>außerhalb des Bildes</translation>
    </message>
    <message>
        <source>Column %1, row %2: %3</source>
        <translation>Spalte %1, Zeile %2: %3</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::MapDocument</name>
    <message>
        <source>unknown error</source>
        <translation>unbekannter Fehler</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::MapDocumentLoader</name>
    <message>
        <source>cannot open %1: %2</source>
        <translation>%1 lässt sich nicht öffnen: %2</translation>
    </message>
    <message>
        <source>cannot open a layer of the class %1</source>
        <translation>eine Ebene der Klasse %1 lässt sich nicht öffnen</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::MapDownload</name>
    <message>
        <source>it is larger than %1 MiB</source>
        <translation>sie ist größer als %1 MiB</translation>
    </message>
    <message>
        <source>the server answers with status %1</source>
        <translation>der Server antwortet mit dem Status %1</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::MapPreferencesPage</name>
    <message>
        <source>&amp;Glide to a new view</source>
        <translation>Zu einer neuen Ansicht &amp;gleiten</translation>
    </message>
    <message>
        <source>Draw a &amp;crosshair while zooming</source>
        <translation>Beim Zoomen ein &amp;Fadenkreuz zeichnen</translation>
    </message>
    <message>
        <source>Maps</source>
        <translation>Karten</translation>
    </message>
    <message>
        <source>This holds for maps that are opened from now on.</source>
        <translation>Das gilt für Karten, die von jetzt an geöffnet werden.</translation>
    </message>
    <message>
        <source>&amp;Background:</source>
        <translation>&amp;Hintergrund:</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::MapSaving</name>
    <message>
        <source>Save the changes to %1?</source>
        <translation>Die Änderungen an %1 speichern?</translation>
    </message>
    <message>
        <source>Save this map of %1?</source>
        <translation>Diese Karte von %1 speichern?</translation>
    </message>
    <message>
        <source>What is not saved is lost.</source>
        <translation>Was nicht gespeichert wird, geht verloren.</translation>
    </message>
    <message>
        <source>Some layers of %1 could not be opened and are not in the map.</source>
        <translation>Einige Ebenen von %1 konnten nicht geöffnet werden und fehlen in der Karte.</translation>
    </message>
    <message>
        <source>Saving takes them out of the file as well.</source>
        <translation>Beim Speichern verschwinden sie auch aus der Datei.</translation>
    </message>
    <message>
        <source>Save Map</source>
        <translation>Karte speichern</translation>
    </message>
    <message>
        <source>Corvane map (*.cmap)</source>
        <translation>Corvane-Karte (*.cmap)</translation>
    </message>
    <message>
        <source>cannot write %1: %2</source>
        <translation>%1 lässt sich nicht schreiben: %2</translation>
    </message>
    <message>
        <source>%1 is open in another window. Close it there, or choose another name.</source>
        <translation>%1 ist in einem anderen Fenster geöffnet. Schließen Sie die Karte dort, oder wählen Sie einen anderen Namen.</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::MapWindow</name>
    <message>
        <source>%1 *</source>
        <translation>%1 *</translation>
    </message>
    <message>
        <source>%1 (opening)</source>
        <translation>%1 (wird geöffnet)</translation>
    </message>
    <message>
        <source>Untitled</source>
        <translation>Unbenannt</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::MeasurePanel</name>
    <message>
        <source>What to measure</source>
        <translation>Was gemessen wird</translation>
    </message>
    <message>
        <source>Distance</source>
        <translation>Strecke</translation>
    </message>
    <message>
        <source>Area</source>
        <translation>Fläche</translation>
    </message>
    <message>
        <source>Units</source>
        <translation>Einheiten</translation>
    </message>
    <message>
        <source>Metric</source>
        <translation>Metrisch</translation>
    </message>
    <message>
        <source>Imperial</source>
        <translation>Angloamerikanisch</translation>
    </message>
    <message>
        <source>Nautical</source>
        <translation>Nautisch</translation>
    </message>
    <message>
        <source>On the ellipsoid, or in the plane of the map</source>
        <translation>Auf dem Ellipsoid oder in der Kartenebene</translation>
    </message>
    <message>
        <source>Ellipsoid</source>
        <translation>Ellipsoid</translation>
    </message>
    <message>
        <source>Plane</source>
        <translation>Ebene der Karte</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>&amp;Kopieren</translation>
    </message>
    <message>
        <source>Copy the result and the points as text (Ctrl+C)</source>
        <translation>Ergebnis und Punkte als Text kopieren (Strg+C)</translation>
    </message>
    <message>
        <source>C&amp;lose</source>
        <translation>S&amp;chließen</translation>
    </message>
    <message>
        <source>End measuring (Escape)</source>
        <translation>Messen beenden (Esc)</translation>
    </message>
    <message>
        <source>Perimeter: %1</source>
        <translation>Umfang: %1</translation>
    </message>
    <message>
        <source>Click at least three corners.</source>
        <translation>Klicken Sie mindestens drei Ecken an.</translation>
    </message>
    <message>
        <source>Click the corners of the area.</source>
        <translation>Klicken Sie die Ecken der Fläche an.</translation>
    </message>
    <message>
        <source>Last segment: %1</source>
        <translation>Letzter Abschnitt: %1</translation>
    </message>
    <message>
        <source>Click along the line.</source>
        <translation>Klicken Sie entlang der Linie.</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::NoticeBar</name>
    <message>
        <source>Notice</source>
        <translation>Mitteilung</translation>
    </message>
    <message>
        <source>Not now</source>
        <translation>Nicht jetzt</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::OpenAddressDialog</name>
    <message>
        <source>Open Address</source>
        <translation>Adresse öffnen</translation>
    </message>
    <message>
        <source>&amp;Address of an image, of tiles or of a map:</source>
        <translation>&amp;Adresse eines Bildes, von Kacheln oder einer Karte:</translation>
    </message>
    <message>
        <source>For example:</source>
        <translation>Zum Beispiel:</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::OpenFailures</name>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message numerus="yes">
        <source>and %n more</source>
        <translation>
            <numerusform>und %n weitere</numerusform>
            <numerusform>und %n weitere</numerusform>
        </translation>
    </message>
    <message>
        <source>This could not be opened:</source>
        <translation>Dies konnte nicht geöffnet werden:</translation>
    </message>
    <message>
        <source>These could not be opened:</source>
        <translation>Diese konnten nicht geöffnet werden:</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::OpenHint</name>
    <message>
        <source>Drop images, folders or maps here,
or choose Open in the menu File.</source>
        <translation>Bilder, Ordner oder Karten hier ablegen
oder im Menü Datei Öffnen wählen.</translation>
    </message>
    <message>
        <source>Drop images, folders or maps here,
or press %1 to open some.</source>
        <translation>Bilder, Ordner oder Karten hier ablegen
oder mit %1 öffnen.</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::OverviewCommands</name>
    <message>
        <source>&quot;%1&quot; is large and has no overviews, so showing much of it is slow.</source>
        <translation>„%1“ ist groß und hat keine Übersichten; viel davon zu zeigen ist langsam.</translation>
    </message>
    <message>
        <source>&amp;Build Overviews</source>
        <translation>Ü&amp;bersichten erzeugen</translation>
    </message>
    <message>
        <source>&amp;Not Now</source>
        <translation>&amp;Nicht jetzt</translation>
    </message>
    <message>
        <source>Ne&amp;ver</source>
        <translation>N&amp;ie</translation>
    </message>
    <message>
        <source>Never for &amp;This File</source>
        <translation>Nie für &amp;diese Datei</translation>
    </message>
    <message>
        <source>Never &amp;Ask</source>
        <translation>Nie &amp;fragen</translation>
    </message>
    <message>
        <source>Overviews of %1</source>
        <translation>Übersichten von %1</translation>
    </message>
    <message>
        <source>The overviews of %1 are in %2.</source>
        <translation>Die Übersichten von %1 sind in %2.</translation>
    </message>
    <message>
        <source>The overviews of &quot;%1&quot; cannot be built: %2.</source>
        <translation>Die Übersichten von „%1“ lassen sich nicht erzeugen: %2.</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>S&amp;chließen</translation>
    </message>
    <message>
        <source>Overviews</source>
        <translation>Übersichten</translation>
    </message>
    <message>
        <source>Overviews are still being built. Closing gives them up.</source>
        <translation>Es werden noch Übersichten erzeugt. Schließen bricht das ab.</translation>
    </message>
    <message>
        <source>&amp;Give Up and Close</source>
        <translation>A&amp;bbrechen und schließen</translation>
    </message>
    <message>
        <source>&amp;Keep Building</source>
        <translation>&amp;Weiter erzeugen</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::Panels</name>
    <message>
        <source>Layers</source>
        <translation>Ebenen</translation>
    </message>
    <message>
        <source>Properties</source>
        <translation>Eigenschaften</translation>
    </message>
    <message>
        <source>Histogram</source>
        <translation>Histogramm</translation>
    </message>
    <message>
        <source>Cell Values</source>
        <translation>Zellwerte</translation>
    </message>
    <message>
        <source>Geolink</source>
        <translation>Verknüpfung</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::PreferencesDialog</name>
    <message>
        <source>Preferences</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Pages</source>
        <translation>Seiten</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::PrintCommands</name>
    <message>
        <source>Export as PDF</source>
        <translation>Als PDF exportieren</translation>
    </message>
    <message>
        <source>PDF document (*.pdf)</source>
        <translation>PDF-Dokument (*.pdf)</translation>
    </message>
    <message>
        <source>cannot write %1: %2</source>
        <translation>%1 lässt sich nicht schreiben: %2</translation>
    </message>
    <message>
        <source>Printing...</source>
        <translation>Druckt ...</translation>
    </message>
    <message>
        <source>The printer does not take the map.</source>
        <translation>Der Drucker nimmt die Karte nicht an.</translation>
    </message>
    <message>
        <source>Loading the map...</source>
        <translation>Die Karte wird geladen ...</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Print</source>
        <translation>Drucken</translation>
    </message>
    <message>
        <source>Not everything came in time of:
%1</source>
        <translation>Nicht alles kam rechtzeitig von:
%1</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::ProbePoint</name>
    <message>
        <source>One Cell Left</source>
        <translation>Eine Zelle nach links</translation>
    </message>
    <message>
        <source>One Cell Right</source>
        <translation>Eine Zelle nach rechts</translation>
    </message>
    <message>
        <source>One Cell Up</source>
        <translation>Eine Zelle nach oben</translation>
    </message>
    <message>
        <source>One Cell Down</source>
        <translation>Eine Zelle nach unten</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::RecentFiles</name>
    <message>
        <source>Open &amp;Recent</source>
        <translation>&amp;Zuletzt geöffnet</translation>
    </message>
    <message>
        <source>&amp;Clear List</source>
        <translation>&amp;Liste leeren</translation>
    </message>
    <message>
        <source>%1 cannot be opened any more.</source>
        <translation>%1 lässt sich nicht mehr öffnen.</translation>
    </message>
    <message>
        <source>&amp;Remove from Open Recent</source>
        <translation>Aus der Liste &amp;entfernen</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::Reloading</name>
    <message>
        <source>%1 has changed.</source>
        <translation>%1 hat sich geändert.</translation>
    </message>
    <message>
        <source>&amp;Reload</source>
        <translation>&amp;Neu laden</translation>
    </message>
    <message numerus="yes">
        <source>%n files have changed.</source>
        <translation>
            <numerusform>%n Datei hat sich geändert.</numerusform>
            <numerusform>%n Dateien haben sich geändert.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::ScaleBox</name>
    <message>
        <source>Scale</source>
        <translation>Maßstab</translation>
    </message>
    <message>
        <source>Scale of the map</source>
        <translation>Maßstab der Karte</translation>
    </message>
    <message>
        <source>Scale of the map at its centre: %1</source>
        <translation>Maßstab der Karte in ihrer Mitte: %1</translation>
    </message>
    <message>
        <source>The map cannot be shown as large as %1.</source>
        <translation>Die Karte lässt sich nicht so groß zeigen wie %1.</translation>
    </message>
    <message>
        <source>The map is empty.</source>
        <translation>Die Karte ist leer.</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::SessionKeeper</name>
    <message numerus="yes">
        <source>The program did not end in order. %n map(s) can be restored.</source>
        <translation>
            <numerusform>Das Programm wurde nicht ordentlich beendet. %n Karte kann wiederhergestellt werden.</numerusform>
            <numerusform>Das Programm wurde nicht ordentlich beendet. %n Karten können wiederhergestellt werden.</numerusform>
        </translation>
    </message>
    <message>
        <source>&amp;Restore</source>
        <translation>&amp;Wiederherstellen</translation>
    </message>
    <message>
        <source>&amp;Discard</source>
        <translation>&amp;Verwerfen</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::SourceCommands</name>
    <message>
        <source>Sources</source>
        <translation>Quellen</translation>
    </message>
    <message numerus="yes">
        <source>%n layers are not reachable</source>
        <translation>
            <numerusform>%n Ebene ist nicht erreichbar</numerusform>
            <numerusform>%n Ebenen sind nicht erreichbar</numerusform>
        </translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>%1
Show all sources</source>
        <translation>%1
Alle Quellen zeigen</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::SourcesPanel</name>
    <message>
        <source>No layer of the open maps comes over the network.</source>
        <translation>Keine Ebene der offenen Karten kommt über das Netz.</translation>
    </message>
    <message>
        <source>Remote layers</source>
        <translation>Ebenen aus dem Netz</translation>
    </message>
    <message>
        <source>Layer</source>
        <translation>Ebene</translation>
    </message>
    <message>
        <source>Server</source>
        <translation>Server</translation>
    </message>
    <message>
        <source>State</source>
        <translation>Zustand</translation>
    </message>
    <message>
        <source>Map</source>
        <translation>Karte</translation>
    </message>
    <message>
        <source>&amp;Try Again</source>
        <translation>&amp;Erneut versuchen</translation>
    </message>
    <message>
        <source>Ask the server of the selected layer at once</source>
        <translation>Den Server der gewählten Ebene sofort fragen</translation>
    </message>
    <message>
        <source>Try A&amp;ll</source>
        <translation>A&amp;lle versuchen</translation>
    </message>
    <message>
        <source>Ask all servers at once that do not answer</source>
        <translation>Alle Server sofort fragen, die nicht antworten</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::SwipeDivider</name>
    <message>
        <source>Swipe divider</source>
        <translation>Trennlinie</translation>
    </message>
    <message>
        <source>Drag, or use the arrow keys. Space turns the divider, Escape ends swiping.</source>
        <translation>Ziehen oder Pfeiltasten. Die Leertaste dreht die Trennlinie, Esc beendet das Überblenden.</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::TaskBar</name>
    <message numerus="yes">
        <source>%1 (and %n more)</source>
        <translation>
            <numerusform>%1 (und %n weitere)</numerusform>
            <numerusform>%1 (und %n weitere)</numerusform>
        </translation>
    </message>
    <message>
        <source>Give up: %1</source>
        <translation>Abbrechen: %1</translation>
    </message>
    <message>
        <source>%1: %2 %</source>
        <translation>%1: %2 %</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::ViewerStatusBar</name>
    <message>
        <source>How much of the map is loaded</source>
        <translation>Wie viel der Karte geladen ist</translation>
    </message>
    <message>
        <source>Form of the coordinates</source>
        <translation>Form der Koordinaten</translation>
    </message>
    <message>
        <source>%1 (%2)</source>
        <translation>%1 (%2)</translation>
    </message>
    <message>
        <source>Form of the coordinates: east and north, as %1</source>
        <translation>Form der Koordinaten: Ost und Nord, denn %1</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::ViewerWindow</name>
    <message>
        <source>Corvane map (*.cmap)</source>
        <translation>Corvane-Karte (*.cmap)</translation>
    </message>
    <message>
        <source>Add Layer</source>
        <translation>Ebene hinzufügen</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Log</source>
        <translation>Protokoll</translation>
    </message>
</context>
<context>
    <name>Corvane::Viewer::WindowCommands</name>
    <message>
        <source>&amp;Window</source>
        <translation>&amp;Fenster</translation>
    </message>
    <message>
        <source>Maps</source>
        <translation>Karten</translation>
    </message>
</context>
<context>
    <name>LayerSteps</name>
    <message>
        <source>Move Layer &quot;%1&quot;</source>
        <translation>Ebene „%1“ verschieben</translation>
    </message>
    <message>
        <source>Show Layer &quot;%1&quot;</source>
        <translation>Ebene „%1“ zeigen</translation>
    </message>
    <message>
        <source>Hide Layer &quot;%1&quot;</source>
        <translation>Ebene „%1“ verbergen</translation>
    </message>
    <message>
        <source>Delete Layer &quot;%1&quot;</source>
        <translation>Ebene „%1“ löschen</translation>
    </message>
    <message numerus="yes">
        <source>Delete %n Layer(s)</source>
        <translation>
            <numerusform>%n Ebene löschen</numerusform>
            <numerusform>%n Ebenen löschen</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>MapDocumentReader</name>
    <message>
        <source>line %1: %2</source>
        <translation>Zeile %1: %2</translation>
    </message>
    <message>
        <source>it declares entities</source>
        <translation>sie erklärt Entitäten</translation>
    </message>
    <message>
        <source>its elements are nested too deeply</source>
        <translation>ihre Elemente sind zu tief verschachtelt</translation>
    </message>
    <message>
        <source>it has too many elements</source>
        <translation>sie hat zu viele Elemente</translation>
    </message>
    <message>
        <source>it has an element with too many attributes</source>
        <translation>sie hat ein Element mit zu vielen Attributen</translation>
    </message>
    <message>
        <source>it is not a map</source>
        <translation>sie ist keine Karte</translation>
    </message>
    <message>
        <source>it is larger than %1 MiB</source>
        <translation>sie ist größer als %1 MiB</translation>
    </message>
</context>
<context>
    <name>MeasureText</name>
    <message>
        <source>%1 units</source>
        <translation>%1 Einheiten</translation>
    </message>
    <message>
        <source>%1 square degrees</source>
        <translation>%1 Quadratgrad</translation>
    </message>
    <message>
        <source>%1 square units</source>
        <translation>%1 Quadrateinheiten</translation>
    </message>
    <message>
        <source>%1 acres</source>
        <translation>%1 acres</translation>
    </message>
    <message>
        <source>Area: %1</source>
        <translation>Fläche: %1</translation>
    </message>
    <message>
        <source>Perimeter: %1</source>
        <translation>Umfang: %1</translation>
    </message>
    <message>
        <source>Distance: %1</source>
        <translation>Strecke: %1</translation>
    </message>
</context>
<context>
    <name>Measurement</name>
    <message>
        <source>on the ellipsoid %1</source>
        <translation>auf dem Ellipsoid %1</translation>
    </message>
    <message>
        <source>in the plane of %1</source>
        <translation>in der Ebene von %1</translation>
    </message>
    <message>
        <source>in degrees: not all points are places on Earth</source>
        <translation>in Grad: nicht alle Punkte sind Orte auf der Erde</translation>
    </message>
    <message>
        <source>in map units: the map has no reference</source>
        <translation>in Karteneinheiten: die Karte hat keinen Bezug</translation>
    </message>
    <message>
        <source>in map units of %1</source>
        <translation>in Karteneinheiten von %1</translation>
    </message>
</context>
<context>
    <name>PictureSaver</name>
    <message>
        <source>Save Picture</source>
        <translation>Bild speichern</translation>
    </message>
    <message>
        <source>cannot write %1: %2</source>
        <translation>%1 lässt sich nicht schreiben: %2</translation>
    </message>
    <message>
        <source>PNG picture (*.png)</source>
        <translation>PNG-Bild (*.png)</translation>
    </message>
    <message>
        <source>JPEG picture (*.jpg *.jpeg)</source>
        <translation>JPEG-Bild (*.jpg *.jpeg)</translation>
    </message>
    <message>
        <source>the name must end in .%1</source>
        <translation>der Name muss auf .%1 enden</translation>
    </message>
</context>
<context>
    <name>PlaceFinder</name>
    <message>
        <source>The map has no reference that tells where %1 is.</source>
        <translation>Die Karte hat keinen Bezug, der sagt, wo %1 ist.</translation>
    </message>
    <message>
        <source>%1 does not reach %2.</source>
        <translation>%1 reicht nicht bis %2.</translation>
    </message>
    <message>
        <source>%1 (WGS 84)</source>
        <translation>%1 (WGS 84)</translation>
    </message>
    <message>
        <source>X: %1, Y: %2 of the map</source>
        <translation>X: %1, Y: %2 der Karte</translation>
    </message>
    <message>
        <source>X: %1, Y: %2 in %3</source>
        <translation>X: %1, Y: %2 in %3</translation>
    </message>
    <message>
        <source>The map has no raster layer whose cells could be counted.</source>
        <translation>Die Karte hat keine Rasterebene, deren Zellen sich zählen ließen.</translation>
    </message>
    <message>
        <source>%1 has columns 0 to %2 and rows 0 to %3.</source>
        <translation>%1 hat die Spalten 0 bis %2 und die Zeilen 0 bis %3.</translation>
    </message>
    <message>
        <source>Column %1, row %2 of %3</source>
        <translation>Spalte %1, Zeile %2 von %3</translation>
    </message>
    <message>
        <source>%1, outside of all layers</source>
        <translation>%1, außerhalb aller Ebenen</translation>
    </message>
</context>
<context>
    <name>PlaceText</name>
    <message>
        <source>There is no such place in the UTM grid.</source>
        <translation>Diese Stelle gibt es im UTM-Gitter nicht.</translation>
    </message>
    <message>
        <source>This is no coordinate: two numbers, latitude and longitude, or column and row are wanted.</source>
        <translation>Das ist keine Koordinate: Gebraucht werden zwei Zahlen, Breite und Länge, oder Spalte und Zeile.</translation>
    </message>
</context>
<context>
    <name>SourceTexts</name>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>waiting until %1</source>
        <translation>wartet bis %1</translation>
    </message>
    <message>
        <source>%1 (%2 s)</source>
        <translation>%1 (%2 s)</translation>
    </message>
    <message>
        <source>on this computer</source>
        <translation>auf diesem Rechner</translation>
    </message>
    <message>
        <source>not asked yet</source>
        <translation>noch nicht gefragt</translation>
    </message>
    <message>
        <source>waiting for the first answer</source>
        <translation>wartet auf die erste Antwort</translation>
    </message>
    <message>
        <source>reachable</source>
        <translation>erreichbar</translation>
    </message>
    <message>
        <source>slow: %1 s for an answer</source>
        <translation>langsam: %1 s bis zur Antwort</translation>
    </message>
    <message>
        <source>stale, shown as it was</source>
        <translation>veraltet, gezeigt wie zuvor</translation>
    </message>
    <message>
        <source>failed</source>
        <translation>gescheitert</translation>
    </message>
</context>
<context>
    <name>ViewScale</name>
    <message>
        <source>&quot;%1&quot; is no scale. A scale is written like 1:25 000, 2 m per pixel or 50 %.</source>
        <translation>„%1“ ist kein Maßstab. Ein Maßstab sieht so aus: 1:25 000, 2 m je Pixel oder 50 %.</translation>
    </message>
    <message>
        <source>The map has no reference that tells what 1:%2 is here. A scale in percent of its cells, or of a pixel like 1 px = 2, can be shown.</source>
        <translation>Die Karte hat keinen Bezug, der sagt, was 1:%2 hier ist. Ein Maßstab in Prozent ihrer Zellen oder eines Pixels wie 1 px = 2 ist möglich.</translation>
    </message>
    <message>
        <source>The map has no raster whose cells a percentage could be of.</source>
        <translation>Die Karte hat kein Raster, auf dessen Zellen sich Prozente beziehen ließen.</translation>
    </message>
    <message>
        <source>The map has no reference that tells how long %2 is here.</source>
        <translation>Die Karte hat keinen Bezug, der sagt, wie lang %2 hier ist.</translation>
    </message>
    <message>
        <source>zoom %1 %</source>
        <translation>Zoom %1 %</translation>
    </message>
</context>
</TS>
