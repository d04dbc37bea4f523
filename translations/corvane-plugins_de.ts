<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de">
<context>
    <name>AddWebTilesDialog</name>
    <message>
        <source>Add Web Tiles</source>
        <translation>Webkacheln hinzufügen</translation>
    </message>
    <message>
        <source>&amp;URL:</source>
        <translation>&amp;URL:</translation>
    </message>
    <message>
        <source>https://{s}.example.org/{z}/{x}/{y}.png</source>
        <translation>https://{s}.example.org/{z}/{x}/{y}.png</translation>
    </message>
    <message>
        <source>{z} zoom, {x} column, {y} row from the north, {-y} row from the south, {q} quadkey, {s} host; or the URL of WMTS capabilities, with #layer=NAME behind it</source>
        <translation>{z} Zoomstufe, {x} Spalte, {y} Zeile von Norden, {-y} Zeile von Süden, {q} Quadkey, {s} Rechner; oder die URL von WMTS-Capabilities, mit #layer=NAME dahinter</translation>
    </message>
    <message>
        <source>&amp;Hosts for {s}:</source>
        <translation>&amp;Rechner für {s}:</translation>
    </message>
    <message>
        <source>a,b,c</source>
        <translation>a,b,c</translation>
    </message>
    <message>
        <source>Separated by commas</source>
        <translation>Durch Kommas getrennt</translation>
    </message>
    <message>
        <source>Mi&amp;nimum zoom:</source>
        <translation>Kl&amp;einste Zoomstufe:</translation>
    </message>
    <message>
        <source>as the source says</source>
        <translation>wie die Quelle sagt</translation>
    </message>
    <message>
        <source>Ma&amp;ximum zoom:</source>
        <translation>Größ&amp;te Zoomstufe:</translation>
    </message>
    <message>
        <source>Tile &amp;size:</source>
        <translation>Kachel&amp;größe:</translation>
    </message>
    <message>
        <source>A&amp;ttribution:</source>
        <translation>&amp;Quellenangabe:</translation>
    </message>
    <message>
        <source>Painted into the corner of the map</source>
        <translation>Steht in der Ecke der Karte</translation>
    </message>
    <message>
        <source>User a&amp;gent:</source>
        <translation>&amp;Absender:</translation>
    </message>
    <message>
        <source>you@example.org</source>
        <translation>sie@example.org</translation>
    </message>
    <message>
        <source>Stands behind Corvane/1.0 in what the server sees: many want to know who asks</source>
        <translation>Steht hinter Corvane/1.0 in dem, was der Server sieht: Viele wollen wissen, wer fragt</translation>
    </message>
    <message>
        <source>Test Tile</source>
        <translation>Probekachel</translation>
    </message>
    <message>
        <source>&amp;Zoom:</source>
        <translation>&amp;Zoomstufe:</translation>
    </message>
    <message>
        <source>C&amp;olumn:</source>
        <translation>S&amp;palte:</translation>
    </message>
    <message>
        <source>Ro&amp;w:</source>
        <translation>Ze&amp;ile:</translation>
    </message>
    <message>
        <source>&amp;Test</source>
        <translation>Pr&amp;üfen</translation>
    </message>
    <message>
        <source>Test tile</source>
        <translation>Probekachel</translation>
    </message>
</context>
<context>
    <name>Corvane::Map::AddWebTilesDialog</name>
    <message>
        <source>The source has the zooms %1 to %2.</source>
        <translation>Die Quelle hat die Zoomstufen %1 bis %2.</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Hinzufügen</translation>
    </message>
    <message>
        <source>Asking for a tile...</source>
        <translation>Fragt nach einer Kachel ...</translation>
    </message>
    <message>
        <source>This is the tile that the server sent.</source>
        <translation>Das ist die Kachel, die der Server geschickt hat.</translation>
    </message>
    <message>
        <source>The server has no such tile. Test another one, or look at the URL.</source>
        <translation>Der Server hat keine solche Kachel. Prüfen Sie eine andere oder die URL.</translation>
    </message>
    <message>
        <source>No tile came: %1</source>
        <translation>Es kam keine Kachel: %1</translation>
    </message>
    <message>
        <source>Test the source before you add it.</source>
        <translation>Prüfen Sie die Quelle, bevor Sie sie hinzufügen.</translation>
    </message>
</context>
<context>
    <name>Corvane::Map::BudgetPage</name>
    <message>
        <source>Memory</source>
        <translation>Arbeitsspeicher</translation>
    </message>
    <message>
        <source>A quarter of the machine&apos;s memory</source>
        <translation>Ein Viertel des Speichers dieses Rechners</translation>
    </message>
    <message>
        <source>All layers together at &amp;most:</source>
        <translation>Alle Ebenen zusammen &amp;höchstens:</translation>
    </message>
    <message>
        <source>Each layer at &amp;most:</source>
        <translation>Jede Ebene &amp;höchstens:</translation>
    </message>
    <message>
        <source>In use now:</source>
        <translation>Jetzt belegt:</translation>
    </message>
    <message>
        <source> MB</source>
        <translation> MB</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%1 von %2</translation>
    </message>
</context>
<context>
    <name>Corvane::Map::CacheBox</name>
    <message>
        <source>Clear</source>
        <translation>Leeren</translation>
    </message>
    <message>
        <source>being cleared...</source>
        <translation>wird geleert ...</translation>
    </message>
    <message>
        <source>being counted...</source>
        <translation>wird gezählt ...</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%1 von %2</translation>
    </message>
    <message>
        <source>switched off</source>
        <translation>abgeschaltet</translation>
    </message>
</context>
<context>
    <name>Corvane::Map::GdalRasterLayer</name>
    <message>
        <source>no data source</source>
        <translation>keine Datenquelle</translation>
    </message>
    <message>
        <source>the URL has places for tile numbers</source>
        <translation>die URL hat Platzhalter für Kachelnummern</translation>
    </message>
    <message>
        <source>the file does not exist</source>
        <translation>die Datei gibt es nicht</translation>
    </message>
    <message>
        <source>the source is still opening</source>
        <translation>die Quelle wird noch geöffnet</translation>
    </message>
    <message>
        <source>the image cannot be read</source>
        <translation>das Bild lässt sich nicht lesen</translation>
    </message>
</context>
<context>
    <name>Corvane::Map::GdalRasterPlugin</name>
    <message>
        <source>Raster images</source>
        <translation>Rasterbilder</translation>
    </message>
    <message>
        <source>Shows georeferenced images of any size, from files and from web servers.</source>
        <translation>Zeigt georeferenzierte Bilder jeder Größe aus Dateien und von Webservern.</translation>
    </message>
    <message>
        <source>Add raster...</source>
        <translation>Raster hinzufügen ...</translation>
    </message>
    <message>
        <source>Add raster</source>
        <translation>Raster hinzufügen</translation>
    </message>
    <message>
        <source>Cannot open %1.
%2</source>
        <translation>%1 lässt sich nicht öffnen.
%2</translation>
    </message>
    <message>
        <source>All files (*)</source>
        <translation>Alle Dateien (*)</translation>
    </message>
</context>
<context>
    <name>Corvane::Map::ImageServerLayer</name>
    <message>
        <source>Image server</source>
        <translation>Bildserver</translation>
    </message>
    <message>
        <source>opening</source>
        <translation>wird geöffnet</translation>
    </message>
    <message>
        <source>not open: %1</source>
        <translation>nicht offen: %1</translation>
    </message>
    <message>
        <source>the source is still opening</source>
        <translation>die Quelle wird noch geöffnet</translation>
    </message>
</context>
<context>
    <name>Corvane::Map::ImageServerPlugin</name>
    <message>
        <source>Image servers</source>
        <translation>Bildserver</translation>
    </message>
    <message>
        <source>Shows images of image servers in their own grids.</source>
        <translation>Zeigt Bilder von Bildservern in deren eigenem Gitter.</translation>
    </message>
</context>
<context>
    <name>Corvane::Map::ImageServerPropertiesPage</name>
    <message>
        <source>Image Server</source>
        <translation>Bildserver</translation>
    </message>
    <message>
        <source>Image</source>
        <translation>Bild</translation>
    </message>
    <message>
        <source>Address:</source>
        <translation>Adresse:</translation>
    </message>
    <message>
        <source>Size:</source>
        <translation>Größe:</translation>
    </message>
    <message>
        <source>Tiles:</source>
        <translation>Kacheln:</translation>
    </message>
    <message>
        <source>Cell size:</source>
        <translation>Zellgröße:</translation>
    </message>
    <message>
        <source>Coordinate system:</source>
        <translation>Koordinatensystem:</translation>
    </message>
    <message>
        <source>Values:</source>
        <translation>Werte:</translation>
    </message>
    <message>
        <source>Server</source>
        <translation>Server</translation>
    </message>
    <message>
        <source>Try Again</source>
        <translation>Erneut versuchen</translation>
    </message>
    <message>
        <source>Login</source>
        <translation>Anmeldung</translation>
    </message>
    <message>
        <source>User:</source>
        <translation>Benutzer:</translation>
    </message>
    <message>
        <source>unchanged</source>
        <translation>unverändert</translation>
    </message>
    <message>
        <source>Password:</source>
        <translation>Kennwort:</translation>
    </message>
    <message>
        <source>The password is kept until the program ends and stands in no file. Maps hold the user&apos;s name alone.</source>
        <translation>Das Kennwort bleibt bis zum Ende des Programms und steht in keiner Datei. Karten enthalten nur den Benutzernamen.</translation>
    </message>
    <message>
        <source>not known yet</source>
        <translation>noch nicht bekannt</translation>
    </message>
    <message>
        <source>%1 x %2 pixels</source>
        <translation>%1 x %2 Pixel</translation>
    </message>
    <message numerus="yes">
        <source>%1 x %1 pixels, %n level(s)</source>
        <translation>
            <numerusform>%1 x %1 Pixel, %n Stufe</numerusform>
            <numerusform>%1 x %1 Pixel, %n Stufen</numerusform>
        </translation>
    </message>
    <message>
        <source>%1 x %2</source>
        <translation>%1 x %2</translation>
    </message>
    <message>
        <source>unknown</source>
        <translation>unbekannt</translation>
    </message>
    <message>
        <source>%1 (EPSG:%2)</source>
        <translation>%1 (EPSG:%2)</translation>
    </message>
    <message numerus="yes">
        <source>%n band(s) of %1, %2</source>
        <translation>
            <numerusform>%n Kanal von %1, %2</numerusform>
            <numerusform>%n Kanäle von %1, %2</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>Corvane::Map::LayerChoiceDialog</name>
    <message>
        <source>Add vector layer</source>
        <translation>Vektorebene hinzufügen</translation>
    </message>
    <message>
        <source>%1 has several layers. Which are to be added?</source>
        <translation>%1 hat mehrere Ebenen. Welche sollen hinzugefügt werden?</translation>
    </message>
</context>
<context>
    <name>Corvane::Map::OgrVectorLayer</name>
    <message>
        <source>no data source</source>
        <translation>keine Datenquelle</translation>
    </message>
    <message>
        <source>the file does not exist</source>
        <translation>die Datei gibt es nicht</translation>
    </message>
    <message>
        <source>this is the address of tiles</source>
        <translation>das ist die Adresse von Kacheln</translation>
    </message>
</context>
<context>
    <name>Corvane::Map::OgrVectorPlugin</name>
    <message>
        <source>Vector data</source>
        <translation>Vektordaten</translation>
    </message>
    <message>
        <source>Shows points, lines and polygons of files and web servers.</source>
        <translation>Zeigt Punkte, Linien und Flächen aus Dateien und von Webservern.</translation>
    </message>
    <message>
        <source>Add vector layer...</source>
        <translation>Vektorebene hinzufügen ...</translation>
    </message>
    <message>
        <source>All files (*)</source>
        <translation>Alle Dateien (*)</translation>
    </message>
    <message>
        <source>Add vector layer</source>
        <translation>Vektorebene hinzufügen</translation>
    </message>
    <message>
        <source>Cannot open %1.
%2</source>
        <translation>%1 lässt sich nicht öffnen.
%2</translation>
    </message>
</context>
<context>
    <name>Corvane::Map::RasterPropertiesPage</name>
    <message>
        <source>Raster</source>
        <translation>Raster</translation>
    </message>
    <message>
        <source>Display</source>
        <translation>Anzeige</translation>
    </message>
    <message>
        <source>One band</source>
        <translation>Ein Kanal</translation>
    </message>
    <message>
        <source>Three bands</source>
        <translation>Drei Kanäle</translation>
    </message>
    <message>
        <source>Show:</source>
        <translation>Zeigen:</translation>
    </message>
    <message>
        <source>Band:</source>
        <translation>Kanal:</translation>
    </message>
    <message>
        <source>Red:</source>
        <translation>Rot:</translation>
    </message>
    <message>
        <source>Green:</source>
        <translation>Grün:</translation>
    </message>
    <message>
        <source>Blue:</source>
        <translation>Blau:</translation>
    </message>
    <message>
        <source> %</source>
        <translation> %</translation>
    </message>
    <message>
        <source>Transparency:</source>
        <translation>Transparenz:</translation>
    </message>
    <message>
        <source>Smooth pixels when made smaller</source>
        <translation>Pixel beim Verkleinern glätten</translation>
    </message>
    <message>
        <source>Coarser tiles while the view moves</source>
        <translation>Gröbere Kacheln, solange sich die Ansicht bewegt</translation>
    </message>
    <message>
        <source>Source</source>
        <translation>Quelle</translation>
    </message>
    <message>
        <source>Driver:</source>
        <translation>Treiber:</translation>
    </message>
    <message>
        <source>EPSG code:</source>
        <translation>EPSG-Code:</translation>
    </message>
    <message>
        <source>Compression:</source>
        <translation>Kompression:</translation>
    </message>
    <message>
        <source>Layout:</source>
        <translation>Aufbau:</translation>
    </message>
    <message>
        <source>Block size:</source>
        <translation>Blockgröße:</translation>
    </message>
    <message>
        <source>Overviews:</source>
        <translation>Übersichten:</translation>
    </message>
    <message>
        <source>No-data value:</source>
        <translation>Wert ohne Daten:</translation>
    </message>
    <message>
        <source>%1 (%2)</source>
        <translation>%1 (%2)</translation>
    </message>
</context>
<context>
    <name>Corvane::Map::ServedBudgetPage</name>
    <message>
        <source>In the disk cache now</source>
        <translation>Jetzt im Plattencache</translation>
    </message>
    <message>
        <source>No disk cache</source>
        <translation>Kein Plattencache</translation>
    </message>
    <message>
        <source>Disk</source>
        <translation>Platte</translation>
    </message>
    <message>
        <source>Disk &amp;cache at most:</source>
        <translation>Platten&amp;cache höchstens:</translation>
    </message>
</context>
<context>
    <name>Corvane::Map::VectorPropertiesPage</name>
    <message>
        <source>As it is</source>
        <translation>Wie sie ist</translation>
    </message>
    <message>
        <source>Vector</source>
        <translation>Vektor</translation>
    </message>
    <message>
        <source>Display</source>
        <translation>Anzeige</translation>
    </message>
    <message>
        <source>Layer:</source>
        <translation>Ebene:</translation>
    </message>
    <message>
        <source>No line</source>
        <translation>Keine Linie</translation>
    </message>
    <message>
        <source>Solid</source>
        <translation>Durchgezogen</translation>
    </message>
    <message>
        <source>Dashes</source>
        <translation>Gestrichelt</translation>
    </message>
    <message>
        <source>Dots</source>
        <translation>Gepunktet</translation>
    </message>
    <message>
        <source>Dash and dot</source>
        <translation>Strich und Punkt</translation>
    </message>
    <message>
        <source>Dash and two dots</source>
        <translation>Strich und zwei Punkte</translation>
    </message>
    <message>
        <source> px</source>
        <translation> px</translation>
    </message>
    <message>
        <source>Line:</source>
        <translation>Linie:</translation>
    </message>
    <message>
        <source>No fill</source>
        <translation>Keine Füllung</translation>
    </message>
    <message>
        <source>Half</source>
        <translation>Halb</translation>
    </message>
    <message>
        <source>Sparse</source>
        <translation>Locker</translation>
    </message>
    <message>
        <source>Horizontal lines</source>
        <translation>Waagrechte Linien</translation>
    </message>
    <message>
        <source>Vertical lines</source>
        <translation>Senkrechte Linien</translation>
    </message>
    <message>
        <source>Crossing lines</source>
        <translation>Gitter</translation>
    </message>
    <message>
        <source>Rising lines</source>
        <translation>Steigende Linien</translation>
    </message>
    <message>
        <source>Falling lines</source>
        <translation>Fallende Linien</translation>
    </message>
    <message>
        <source>Diagonal cross</source>
        <translation>Schräges Gitter</translation>
    </message>
    <message>
        <source>Fill:</source>
        <translation>Füllung:</translation>
    </message>
    <message>
        <source>Circle</source>
        <translation>Kreis</translation>
    </message>
    <message>
        <source>Square</source>
        <translation>Quadrat</translation>
    </message>
    <message>
        <source>Triangle</source>
        <translation>Dreieck</translation>
    </message>
    <message>
        <source>Cross</source>
        <translation>Kreuz</translation>
    </message>
    <message>
        <source>Points:</source>
        <translation>Punkte:</translation>
    </message>
    <message>
        <source> %</source>
        <translation> %</translation>
    </message>
    <message>
        <source>Transparency:</source>
        <translation>Transparenz:</translation>
    </message>
    <message>
        <source>Smooth edges</source>
        <translation>Kanten glätten</translation>
    </message>
    <message>
        <source>Labels</source>
        <translation>Beschriftung</translation>
    </message>
    <message>
        <source>Field:</source>
        <translation>Feld:</translation>
    </message>
    <message>
        <source> pt</source>
        <translation> pt</translation>
    </message>
    <message>
        <source>Text:</source>
        <translation>Text:</translation>
    </message>
    <message>
        <source>Source</source>
        <translation>Quelle</translation>
    </message>
    <message>
        <source>Driver:</source>
        <translation>Treiber:</translation>
    </message>
    <message>
        <source>Geometry:</source>
        <translation>Geometrie:</translation>
    </message>
    <message>
        <source>Features:</source>
        <translation>Objekte:</translation>
    </message>
    <message>
        <source>Attributes:</source>
        <translation>Attribute:</translation>
    </message>
    <message>
        <source>EPSG code:</source>
        <translation>EPSG-Code:</translation>
    </message>
    <message>
        <source>Not shown:</source>
        <translation>Nicht gezeigt:</translation>
    </message>
    <message>
        <source>(none)</source>
        <translation>(keine)</translation>
    </message>
</context>
<context>
    <name>Corvane::Map::WebTileLayer</name>
    <message>
        <source>Web tiles</source>
        <translation>Webkacheln</translation>
    </message>
    <message>
        <source>opening</source>
        <translation>wird geöffnet</translation>
    </message>
    <message>
        <source>not open: %1</source>
        <translation>nicht offen: %1</translation>
    </message>
</context>
<context>
    <name>Corvane::Map::WebTilePlugin</name>
    <message>
        <source>Web tiles</source>
        <translation>Webkacheln</translation>
    </message>
    <message>
        <source>Shows tiles of web servers in the usual grid of Web Mercator.</source>
        <translation>Zeigt Kacheln von Webservern im üblichen Web-Mercator-Gitter.</translation>
    </message>
    <message>
        <source>Add web tiles...</source>
        <translation>Webkacheln hinzufügen ...</translation>
    </message>
</context>
<context>
    <name>Corvane::Map::WebTilePropertiesPage</name>
    <message>
        <source>reachable</source>
        <translation>erreichbar</translation>
    </message>
    <message>
        <source>slow: %1 seconds for an answer</source>
        <translation>langsam: %1 Sekunden bis zur Antwort</translation>
    </message>
    <message>
        <source>failed: %1</source>
        <translation>gescheitert: %1</translation>
    </message>
    <message>
        <source>waiting until %1: %2</source>
        <translation>wartet bis %1: %2</translation>
    </message>
    <message>
        <source>not asked yet</source>
        <translation>noch nicht gefragt</translation>
    </message>
    <message>
        <source>Disk cache of all web tiles</source>
        <translation>Plattencache aller Webkacheln</translation>
    </message>
    <message>
        <source>Web Tiles</source>
        <translation>Webkacheln</translation>
    </message>
    <message>
        <source>Source</source>
        <translation>Quelle</translation>
    </message>
    <message>
        <source>URL:</source>
        <translation>URL:</translation>
    </message>
    <message>
        <source>Attribution:</source>
        <translation>Quellenangabe:</translation>
    </message>
    <message>
        <source>Coarsest zoom:</source>
        <translation>Gröbste Zoomstufe:</translation>
    </message>
    <message>
        <source>Finest zoom:</source>
        <translation>Feinste Zoomstufe:</translation>
    </message>
    <message>
        <source>Server</source>
        <translation>Server</translation>
    </message>
    <message>
        <source>Retry now</source>
        <translation>Jetzt erneut versuchen</translation>
    </message>
</context>
<context>
    <name>ImageGrid</name>
    <message>
        <source>the server asks for a user and a password</source>
        <translation>der Server verlangt Benutzername und Kennwort</translation>
    </message>
    <message>
        <source>the server does not accept the user and password</source>
        <translation>der Server nimmt Benutzername und Kennwort nicht an</translation>
    </message>
    <message>
        <source>the server has no such image</source>
        <translation>der Server hat kein solches Bild</translation>
    </message>
    <message>
        <source>the server answers with status %1</source>
        <translation>der Server antwortet mit dem Status %1</translation>
    </message>
    <message>
        <source>the server does not describe the image&apos;s grid</source>
        <translation>der Server beschreibt das Gitter des Bildes nicht</translation>
    </message>
</context>
<context>
    <name>ImageServerCells</name>
    <message>
        <source>Gray</source>
        <translation>Grau</translation>
    </message>
    <message>
        <source>Red</source>
        <translation>Rot</translation>
    </message>
    <message>
        <source>Green</source>
        <translation>Grün</translation>
    </message>
    <message>
        <source>Blue</source>
        <translation>Blau</translation>
    </message>
    <message>
        <source>Alpha</source>
        <translation>Alpha</translation>
    </message>
    <message>
        <source>the colours of the server&apos;s picture</source>
        <translation>die Farben des Serverbildes</translation>
    </message>
</context>
<context>
    <name>ImageServerLoader</name>
    <message>
        <source>the server has the image no more</source>
        <translation>der Server hat das Bild nicht mehr</translation>
    </message>
    <message>
        <source>the tile has %1 x %2 pixels instead of %3 x %4</source>
        <translation>die Kachel hat %1 x %2 Pixel statt %3 x %4</translation>
    </message>
    <message>
        <source>the image has changed on the server</source>
        <translation>das Bild hat sich auf dem Server geändert</translation>
    </message>
</context>
<context>
    <name>LayerElement</name>
    <message>
        <source>the file does not exist</source>
        <translation>die Datei gibt es nicht</translation>
    </message>
    <message>
        <source>cannot open %1</source>
        <translation>%1 lässt sich nicht öffnen</translation>
    </message>
    <message>
        <source>cannot open %1: %2</source>
        <translation>%1 lässt sich nicht öffnen: %2</translation>
    </message>
</context>
<context>
    <name>OverviewBuilder</name>
    <message>
        <source>the file does not exist</source>
        <translation>die Datei gibt es nicht</translation>
    </message>
    <message>
        <source>nothing can be written to %1</source>
        <translation>in %1 lässt sich nichts schreiben</translation>
    </message>
    <message>
        <source>there is no room for overviews: %1 MB are needed in %2</source>
        <translation>für Übersichten ist kein Platz: %1 MB werden in %2 gebraucht</translation>
    </message>
    <message>
        <source>%1 cannot be written</source>
        <translation>%1 lässt sich nicht schreiben</translation>
    </message>
    <message>
        <source>the file has changed meanwhile</source>
        <translation>die Datei hat sich inzwischen geändert</translation>
    </message>
</context>
<context>
    <name>SourceHealth</name>
    <message>
        <source>left alone for %1 s: %2</source>
        <translation>wird %1 s in Ruhe gelassen: %2</translation>
    </message>
    <message>
        <source>failing: %1</source>
        <translation>gestört: %1</translation>
    </message>
    <message>
        <source>ready</source>
        <translation>bereit</translation>
    </message>
</context>
<context>
    <name>TileFetch</name>
    <message>
        <source>the server answers with status %1</source>
        <translation>der Server antwortet mit dem Status %1</translation>
    </message>
</context>
<context>
    <name>TilePicture</name>
    <message>
        <source>the picture is too large, %1 x %2 pixels</source>
        <translation>das Bild ist zu groß, %1 x %2 Pixel</translation>
    </message>
    <message>
        <source>the picture is damaged</source>
        <translation>das Bild ist beschädigt</translation>
    </message>
    <message>
        <source>what the server sent is no picture</source>
        <translation>was der Server geschickt hat, ist kein Bild</translation>
    </message>
    <message>
        <source>the server sent %1 instead of a picture</source>
        <translation>der Server hat %1 statt eines Bildes geschickt</translation>
    </message>
</context>
<context>
    <name>TilePreset</name>
    <message>
        <source>the file is no web tile preset</source>
        <translation>die Datei ist keine Kachelvorlage</translation>
    </message>
    <message>
        <source>the preset has something that is no number</source>
        <translation>die Vorlage hat etwas, das keine Zahl ist</translation>
    </message>
</context>
<context>
    <name>TileTemplate</name>
    <message>
        <source>the URL has a brace that is not closed</source>
        <translation>die URL hat eine offene Klammer</translation>
    </message>
    <message>
        <source>the URL has the unknown place {%1}</source>
        <translation>die URL hat den unbekannten Platzhalter {%1}</translation>
    </message>
    <message>
        <source>the URL does not begin with http</source>
        <translation>die URL beginnt nicht mit http</translation>
    </message>
    <message>
        <source>the URL is not well formed</source>
        <translation>die URL ist nicht wohlgeformt</translation>
    </message>
    <message>
        <source>the URL has no places for zoom, column and row</source>
        <translation>die URL hat keine Platzhalter für Zoomstufe, Spalte und Zeile</translation>
    </message>
    <message>
        <source>the URL has a place for hosts, and none is named</source>
        <translation>die URL hat einen Platzhalter für Rechner, und keiner ist genannt</translation>
    </message>
</context>
<context>
    <name>VectorSource</name>
    <message>
        <source>this is no vector source</source>
        <translation>das ist keine Vektorquelle</translation>
    </message>
    <message>
        <source>it has no layer with geometry</source>
        <translation>sie hat keine Ebene mit Geometrie</translation>
    </message>
    <message>
        <source>it has no layer &quot;%1&quot;</source>
        <translation>sie hat keine Ebene „%1“</translation>
    </message>
</context>
<context>
    <name>WebTileOffer</name>
    <message>
        <source>the server answers with status %1</source>
        <translation>der Server antwortet mit dem Status %1</translation>
    </message>
    <message>
        <source>this is no source of web tiles</source>
        <translation>das ist keine Quelle von Webkacheln</translation>
    </message>
</context>
<context>
    <name>WmtsCapabilities</name>
    <message>
        <source>the capabilities cannot be read: %1</source>
        <translation>die Capabilities sind nicht lesbar: %1</translation>
    </message>
    <message>
        <source>they are nested too deeply</source>
        <translation>sie sind zu tief verschachtelt</translation>
    </message>
    <message>
        <source>the document holds no WMTS capabilities</source>
        <translation>das Dokument enthält keine WMTS-Capabilities</translation>
    </message>
    <message>
        <source>no layer comes in Web Mercator tiles</source>
        <translation>keine Ebene kommt in Web-Mercator-Kacheln</translation>
    </message>
    <message>
        <source>there is no layer %1</source>
        <translation>es gibt keine Ebene %1</translation>
    </message>
</context>
</TS>
