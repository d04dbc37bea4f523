<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de">
<context>
    <name>CellValues</name>
    <message>
        <source>Raster Cell Values</source>
        <translation>Rasterzellenwerte</translation>
    </message>
    <message>
        <source>Raster Cell Coordinates</source>
        <translation>Koordinaten der Rasterzelle</translation>
    </message>
    <message>
        <source>Dataset X, Y:</source>
        <translation>Datensatz X, Y:</translation>
    </message>
    <message>
        <source>Easting, Northing:</source>
        <translation>Ostwert, Nordwert:</translation>
    </message>
    <message>
        <source>Latitude, Longitude:</source>
        <translation>Breite, Länge:</translation>
    </message>
    <message>
        <source>Raster Cell Values Profile</source>
        <translation>Profil der Rasterzellenwerte</translation>
    </message>
    <message>
        <source>Band:</source>
        <translation>Kanal:</translation>
    </message>
    <message>
        <source>Cell values</source>
        <translation>Zellwerte</translation>
    </message>
</context>
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
<context>
    <name>Corvane::FileChooser</name>
    <message>
        <source>Open File</source>
        <translation>Datei öffnen</translation>
    </message>
</context>
<context>
    <name>Corvane::Gui::HistogramDisplay</name>
    <message>
        <source>Histograms not available.</source>
        <translation>Histogramme sind nicht verfügbar.</translation>
    </message>
</context>
<context>
    <name>Corvane::Gui::LayerProperties</name>
    <message>
        <source>Layer Properties</source>
        <translation>Ebeneneigenschaften</translation>
    </message>
    <message>
        <source>General</source>
        <translation>Allgemein</translation>
    </message>
    <message>
        <source>Data Source:</source>
        <translation>Datenquelle:</translation>
    </message>
    <message>
        <source>Description:</source>
        <translation>Beschreibung:</translation>
    </message>
    <message>
        <source>Comments:</source>
        <translation>Bemerkungen:</translation>
    </message>
    <message>
        <source>Spatial Reference System</source>
        <translation>Räumliches Bezugssystem</translation>
    </message>
    <message>
        <source>Reference:</source>
        <translation>Bezug:</translation>
    </message>
    <message>
        <source>Cell Units:</source>
        <translation>Zelleinheit:</translation>
    </message>
    <message>
        <source>Scale Range:</source>
        <translation>Maßstabsbereich:</translation>
    </message>
    <message>
        <source>Specify a scale range where this layer is visible:</source>
        <translation>Maßstabsbereich, in dem diese Ebene sichtbar ist:</translation>
    </message>
    <message>
        <source>Min Scale:</source>
        <translation>Kleinster Maßstab:</translation>
    </message>
    <message>
        <source>Snapshot map window</source>
        <translation>Vom Kartenfenster übernehmen</translation>
    </message>
    <message>
        <source>Max Scale:</source>
        <translation>Größter Maßstab:</translation>
    </message>
    <message>
        <source>Vector Info</source>
        <translation>Vektordaten</translation>
    </message>
    <message>
        <source>Raster Info</source>
        <translation>Rasterdaten</translation>
    </message>
    <message>
        <source>Format:</source>
        <translation>Format:</translation>
    </message>
    <message>
        <source>Width:</source>
        <translation>Breite:</translation>
    </message>
    <message>
        <source>Height:</source>
        <translation>Höhe:</translation>
    </message>
    <message>
        <source>Gigapixels:</source>
        <translation>Gigapixel:</translation>
    </message>
    <message>
        <source>1 Gigapixel = 1,000 Megapixels, calculated as width x height, and does not include number of bands.</source>
        <translation>1 Gigapixel = 1.000 Megapixel, Breite x Höhe, ohne die Zahl der Kanäle.</translation>
    </message>
    <message>
        <source>Bands:</source>
        <translation>Kanäle:</translation>
    </message>
    <message>
        <source>Has Alpha:</source>
        <translation>Alphakanal:</translation>
    </message>
    <message>
        <source>Cell Size X:</source>
        <translation>Zellgröße X:</translation>
    </message>
    <message>
        <source>Cell Size Y:</source>
        <translation>Zellgröße Y:</translation>
    </message>
    <message>
        <source>Cell Type:</source>
        <translation>Zelltyp:</translation>
    </message>
    <message>
        <source>Color Space:</source>
        <translation>Farbraum:</translation>
    </message>
    <message>
        <source>Top Coordinate:</source>
        <translation>Obere Koordinate:</translation>
    </message>
    <message>
        <source>Left Coordinate:</source>
        <translation>Linke Koordinate:</translation>
    </message>
    <message>
        <source>Bottom Coordinate:</source>
        <translation>Untere Koordinate:</translation>
    </message>
    <message>
        <source>Right Coordinate:</source>
        <translation>Rechte Koordinate:</translation>
    </message>
    <message>
        <source>Rotation:</source>
        <translation>Drehung:</translation>
    </message>
</context>
<context>
    <name>Corvane::Gui::MainWindow</name>
    <message>
        <source>Error parsing toolbar file %1.

%2</source>
        <translation>Fehler in der Werkzeugleistendatei %1.

%2</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>Error parsing menu file %1.

%2</source>
        <translation>Fehler in der Menüdatei %1.

%2</translation>
    </message>
    <message>
        <source>Unable to load the configuration file &apos;%1&apos;.
</source>
        <translation>Die Konfigurationsdatei „%1“ kann nicht geladen werden.
</translation>
    </message>
</context>
<context>
    <name>Corvane::Gui::MapProperties</name>
    <message>
        <source>MapProperties</source>
        <translation>MapProperties</translation>
    </message>
    <message>
        <source>Map Properties</source>
        <translation>Karteneigenschaften</translation>
    </message>
    <message>
        <source>Draw map bounding box</source>
        <translation>Rahmen der Karte zeichnen</translation>
    </message>
    <message>
        <source>Color...</source>
        <translation>Farbe ...</translation>
    </message>
    <message>
        <source>Draw layer bounding boxes</source>
        <translation>Rahmen der Ebenen zeichnen</translation>
    </message>
    <message>
        <source>Map background color</source>
        <translation>Hintergrundfarbe der Karte</translation>
    </message>
    <message>
        <source>Comments</source>
        <translation>Bemerkungen</translation>
    </message>
</context>
<context>
    <name>Corvane::Gui::PropertyBrowser</name>
    <message>
        <source>Properties</source>
        <translation>Eigenschaften</translation>
    </message>
</context>
<context>
    <name>Corvane::Gui::ZWTPBrowser</name>
    <message>
        <source>No preview</source>
        <translation>Keine Vorschau</translation>
    </message>
    <message>
        <source>TAVRO ORIVEX Browser Error</source>
        <translation>Fehler im TAVRO ORIVEX Browser</translation>
    </message>
    <message>
        <source>Invalid ZWTP Url.</source>
        <translation>Ungültige ZWTP-URL.</translation>
    </message>
    <message>
        <source>Invalid Raxion Url.</source>
        <translation>Ungültige Raxion-URL.</translation>
    </message>
    <message>
        <source>Authentication Error</source>
        <translation>Anmeldefehler</translation>
    </message>
    <message>
        <source>This server requires authentication. Please enter your credentials.</source>
        <translation>Dieser Server verlangt eine Anmeldung. Bitte geben Sie Ihre Zugangsdaten ein.</translation>
    </message>
    <message>
        <source>  Add ZWTP Layer  </source>
        <translation>  ZWTP-Ebene hinzufügen  </translation>
    </message>
    <message>
        <source>  Add Raxion Layer  </source>
        <translation>  Raxion-Ebene hinzufügen  </translation>
    </message>
    <message>
        <source>  Zwtp Url  </source>
        <translation>  ZWTP-URL  </translation>
    </message>
    <message>
        <source>  Raxion Url  </source>
        <translation>  Raxion-URL  </translation>
    </message>
    <message>
        <source>Not a valid server name.</source>
        <translation>Kein gültiger Servername.</translation>
    </message>
    <message>
        <source>The response was not a JSON document.</source>
        <translation>Die Antwort war kein JSON-Dokument.</translation>
    </message>
    <message>
        <source>Could not decode image data.</source>
        <translation>Die Bilddaten konnten nicht gelesen werden.</translation>
    </message>
    <message>
        <source>Error: </source>
        <translation>Fehler: </translation>
    </message>
    <message>
        <source>Exception generated processing &lt;DSINFO&gt; tag.</source>
        <translation>Fehler beim Lesen des Elements &lt;DSINFO&gt;.</translation>
    </message>
    <message>
        <source>Not a valid server or service name.</source>
        <translation>Kein gültiger Server- oder Dienstname.</translation>
    </message>
    <message>
        <source>ORIVEX Browser Error</source>
        <translation>Fehler im ORIVEX Browser</translation>
    </message>
    <message>
        <source>Invalid response from the server.

Ensure the server name is correct and is running TAVRO ORIVEX or contact the server administrator.</source>
        <translation>Ungültige Antwort des Servers.

Prüfen Sie, ob der Servername stimmt und dort TAVRO ORIVEX läuft, oder fragen Sie den Betreiber des Servers.</translation>
    </message>
    <message>
        <source>Server returned error: </source>
        <translation>Der Server meldet einen Fehler: </translation>
    </message>
    <message>
        <source>The web server responded with an unrecognized reply.

To browse ZWTP images, the server must be running TAVRO ORIVEX Core 2013 or higher. Please contact your server administrator.</source>
        <translation>Der Webserver hat eine unbekannte Antwort gegeben.

Für ZWTP-Bilder muss auf dem Server TAVRO ORIVEX Core 2013 oder neuer laufen. Bitte fragen Sie den Betreiber des Servers.</translation>
    </message>
    <message>
        <source>Could not query service names for this host. This feature requires TAVRO ORIVEX Core 2013 or higher.</source>
        <translation>Die Dienstnamen dieses Servers konnten nicht abgefragt werden. Dazu ist TAVRO ORIVEX Core 2013 oder neuer nötig.</translation>
    </message>
    <message>
        <source>Generating preview...</source>
        <translation>Vorschau wird erzeugt ...</translation>
    </message>
</context>
<context>
    <name>Corvane::Map::MapTreeView</name>
    <message>
        <source>Add layer...</source>
        <translation>Ebene hinzufügen ...</translation>
    </message>
    <message>
        <source>Add layer</source>
        <translation>Ebene hinzufügen</translation>
    </message>
    <message>
        <source>Delete Layer</source>
        <translation>Ebene löschen</translation>
    </message>
    <message>
        <source>Move Layer to Top</source>
        <translation>Ebene ganz nach oben</translation>
    </message>
    <message>
        <source>Move Layer Up</source>
        <translation>Ebene nach oben</translation>
    </message>
    <message>
        <source>Move Layer Down</source>
        <translation>Ebene nach unten</translation>
    </message>
    <message>
        <source>Move Layer to Bottom</source>
        <translation>Ebene ganz nach unten</translation>
    </message>
    <message>
        <source>Zoom to Layer</source>
        <translation>Auf Ebene zoomen</translation>
    </message>
    <message>
        <source>Zoom to Layer 1:1</source>
        <translation>Auf Ebene 1:1 zoomen</translation>
    </message>
    <message>
        <source>Zoom to All</source>
        <translation>Alles zeigen</translation>
    </message>
    <message>
        <source>Properties</source>
        <translation>Eigenschaften</translation>
    </message>
    <message>
        <source>&lt;br/&gt;&lt;b&gt;Number of layers:&lt;/b&gt; %1</source>
        <translation>&lt;br/&gt;&lt;b&gt;Zahl der Ebenen:&lt;/b&gt; %1</translation>
    </message>
    <message>
        <source>&lt;br/&gt;&lt;b&gt;Data Source:&lt;/b&gt; %1</source>
        <translation>&lt;br/&gt;&lt;b&gt;Datenquelle:&lt;/b&gt; %1</translation>
    </message>
    <message>
        <source>&lt;br/&gt;&lt;b&gt;Coordinate System:&lt;/b&gt; %1</source>
        <translation>&lt;br/&gt;&lt;b&gt;Koordinatensystem:&lt;/b&gt; %1</translation>
    </message>
    <message>
        <source>&lt;br/&gt;&lt;b&gt;Layer Type:&lt;/b&gt; %1</source>
        <translation>&lt;br/&gt;&lt;b&gt;Ebenenart:&lt;/b&gt; %1</translation>
    </message>
    <message>
        <source>&lt;br/&gt;&lt;b&gt;Protocol:&lt;/b&gt; %1</source>
        <translation>&lt;br/&gt;&lt;b&gt;Protokoll:&lt;/b&gt; %1</translation>
    </message>
    <message>
        <source>&lt;br/&gt;&lt;i&gt;%1&lt;/i&gt;</source>
        <translation>&lt;br/&gt;&lt;i&gt;%1&lt;/i&gt;</translation>
    </message>
    <message>
        <source>&lt;/p&gt;</source>
        <translation>&lt;/p&gt;</translation>
    </message>
    <message>
        <source>MapView</source>
        <translation>MapView</translation>
    </message>
    <message>
        <source>Open a map window before dropping files on the workspace.</source>
        <translation>Öffnen Sie ein Kartenfenster, bevor Sie Dateien auf der Arbeitsfläche ablegen.</translation>
    </message>
    <message>
        <source>Unknown data type.</source>
        <translation>Unbekannte Datenart.</translation>
    </message>
</context>
<context>
    <name>Corvane::Map::MapView</name>
    <message>
        <source>Map View</source>
        <translation>Kartenansicht</translation>
    </message>
    <message>
        <source>Zoom</source>
        <translation>Zoom</translation>
    </message>
    <message>
        <source>View</source>
        <translation>Ansicht</translation>
    </message>
    <message>
        <source>Properties</source>
        <translation>Eigenschaften</translation>
    </message>
</context>
<context>
    <name>Geolink</name>
    <message>
        <source>Geo Link</source>
        <translation>Geo-Verknüpfung</translation>
    </message>
    <message>
        <source>The map window will not be geolinked with other windows.</source>
        <translation>Das Kartenfenster wird nicht mit anderen verknüpft.</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Keine</translation>
    </message>
    <message>
        <source>The map window will be linked to other windows using the same geographical coordinates  for each window.</source>
        <translation>Das Kartenfenster wird so mit anderen verknüpft, dass alle dieselben geographischen Koordinaten zeigen.</translation>
    </message>
    <message>
        <source>Window</source>
        <translation>Fenster</translation>
    </message>
    <message>
        <source>The map window will be linked to other windows, using the coordinates of the entire screen.</source>
        <translation>Das Kartenfenster wird über die Koordinaten des ganzen Bildschirms mit anderen verknüpft.</translation>
    </message>
    <message>
        <source>Screen</source>
        <translation>Bildschirm</translation>
    </message>
    <message>
        <source>Apply the current selection to all map windows</source>
        <translation>Die Auswahl auf alle Kartenfenster anwenden</translation>
    </message>
    <message>
        <source>Apply All</source>
        <translation>Auf alle anwenden</translation>
    </message>
</context>
<context>
    <name>HistogramDisplay</name>
    <message>
        <source>HistogramDisplay</source>
        <translation>HistogramDisplay</translation>
    </message>
    <message>
        <source>Band:</source>
        <translation>Kanal:</translation>
    </message>
    <message>
        <source>Show all bands</source>
        <translation>Alle Kanäle zeigen</translation>
    </message>
    <message>
        <source>Source:</source>
        <translation>Quelle:</translation>
    </message>
    <message>
        <source>Entire Image</source>
        <translation>Ganzes Bild</translation>
    </message>
    <message>
        <source>Current Viewport</source>
        <translation>Aktueller Ausschnitt</translation>
    </message>
    <message>
        <source>Approximate (faster)</source>
        <translation>Ungefähr (schneller)</translation>
    </message>
    <message>
        <source>Refresh histogram</source>
        <translation>Histogramm neu berechnen</translation>
    </message>
    <message>
        <source>Refresh</source>
        <translation>Aktualisieren</translation>
    </message>
    <message>
        <source>Value:</source>
        <translation>Wert:</translation>
    </message>
    <message>
        <source>Count:</source>
        <translation>Anzahl:</translation>
    </message>
    <message>
        <source>Mean:</source>
        <translation>Mittel:</translation>
    </message>
    <message>
        <source>Max Val:</source>
        <translation>Maximum:</translation>
    </message>
    <message>
        <source>Std Dev:</source>
        <translation>Std.-Abw.:</translation>
    </message>
    <message>
        <source>Min Val:</source>
        <translation>Minimum:</translation>
    </message>
    <message>
        <source>Median:</source>
        <translation>Median:</translation>
    </message>
    <message>
        <source>Mode:</source>
        <translation>Modus:</translation>
    </message>
    <message>
        <source>Value under the pointer</source>
        <translation>Wert unter dem Zeiger</translation>
    </message>
    <message>
        <source>Count under the pointer</source>
        <translation>Anzahl unter dem Zeiger</translation>
    </message>
    <message>
        <source>Mean</source>
        <translation>Mittelwert</translation>
    </message>
    <message>
        <source>Maximum</source>
        <translation>Maximum</translation>
    </message>
    <message>
        <source>Standard deviation</source>
        <translation>Standardabweichung</translation>
    </message>
    <message>
        <source>Minimum</source>
        <translation>Minimum</translation>
    </message>
    <message>
        <source>Median</source>
        <translation>Median</translation>
    </message>
    <message>
        <source>Mode</source>
        <translation>Modus</translation>
    </message>
</context>
<context>
    <name>KRSServerInfoClass</name>
    <message>
        <source>ORIVEX Core Server Information</source>
        <translation>Angaben zum ORIVEX-Core-Server</translation>
    </message>
    <message>
        <source>Server Info</source>
        <translation>Server</translation>
    </message>
    <message>
        <source>Hostname:</source>
        <translation>Rechnername:</translation>
    </message>
    <message>
        <source>Title:</source>
        <translation>Titel:</translation>
    </message>
    <message>
        <source>Build:</source>
        <translation>Version:</translation>
    </message>
    <message>
        <source>Keywords:</source>
        <translation>Stichwörter:</translation>
    </message>
    <message>
        <source>Server Aliases:</source>
        <translation>Weitere Namen:</translation>
    </message>
    <message>
        <source>Online Resource:</source>
        <translation>Im Netz:</translation>
    </message>
    <message>
        <source>Formats:</source>
        <translation>Formate:</translation>
    </message>
    <message>
        <source>Abstract</source>
        <translation>Zusammenfassung</translation>
    </message>
    <message>
        <source>Contact Information</source>
        <translation>Kontakt</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>ZWTPBrowserClass</name>
    <message>
        <source>TAVRO ORIVEX Browser</source>
        <translation>TAVRO ORIVEX Browser</translation>
    </message>
    <message>
        <source>ORIVEX Core</source>
        <translation>ORIVEX Core</translation>
    </message>
    <message>
        <source>Host name:</source>
        <translation>Rechnername:</translation>
    </message>
    <message>
        <source>localhost</source>
        <translation>localhost</translation>
    </message>
    <message>
        <source>Connect to the server and display a list of images available for ZWTP streaming.</source>
        <translation>Mit dem Server verbinden und die Bilder auflisten, die er über ZWTP anbietet.</translation>
    </message>
    <message>
        <source>Connect to server</source>
        <translation>Mit Server verbinden</translation>
    </message>
    <message>
        <source>Service name:</source>
        <translation>Dienstname:</translation>
    </message>
    <message>
        <source>default</source>
        <translation>default</translation>
    </message>
    <message>
        <source>&lt;html&gt;&lt;head/&gt;&lt;body&gt;&lt;p&gt;Opens a window that displays the details of the TAVRO ORIVEX Essentials.&lt;/p&gt;&lt;/body&gt;&lt;/html&gt;</source>
        <translation>&lt;html&gt;&lt;head/&gt;&lt;body&gt;&lt;p&gt;Öffnet ein Fenster mit Einzelheiten über TAVRO ORIVEX Essentials.&lt;/p&gt;&lt;/body&gt;&lt;/html&gt;</translation>
    </message>
    <message>
        <source>Server Info</source>
        <translation>Server</translation>
    </message>
    <message>
        <source>Username:</source>
        <translation>Benutzername:</translation>
    </message>
    <message>
        <source>Enter user name</source>
        <translation>Benutzernamen eingeben</translation>
    </message>
    <message>
        <source>&lt;html&gt;&lt;head/&gt;&lt;body&gt;&lt;p&gt;Connect to the server using Secure Sockets Layer (SSL) for queries and use ZWTPS for streaming imagery.&lt;/p&gt;&lt;/body&gt;&lt;/html&gt;</source>
        <translation>&lt;html&gt;&lt;head/&gt;&lt;body&gt;&lt;p&gt;Anfragen verschlüsselt (SSL) stellen und Bilder über ZWTPS übertragen.&lt;/p&gt;&lt;/body&gt;&lt;/html&gt;</translation>
    </message>
    <message>
        <source>Use secure (SSL) connection</source>
        <translation>Verschlüsselte Verbindung (SSL)</translation>
    </message>
    <message>
        <source>Password:</source>
        <translation>Kennwort:</translation>
    </message>
    <message>
        <source>Enter a password</source>
        <translation>Kennwort eingeben</translation>
    </message>
    <message>
        <source>&lt;html&gt;&lt;head/&gt;&lt;body&gt;&lt;p&gt;Displays the available images to stream via ZWTP in a tree view. Double click an item to add it to the current map selection and close this dialog. Or select an image to display its properties, then add it to the map by clicking &amp;quot;Add&amp;quot;.&lt;/p&gt;&lt;/body&gt;&lt;/html&gt;</source>
        <translation>&lt;html&gt;&lt;head/&gt;&lt;body&gt;&lt;p&gt;Zeigt die über ZWTP verfügbaren Bilder als Baum. Ein Doppelklick fügt ein Bild der Karte hinzu und schließt diesen Dialog. Oder wählen Sie ein Bild, um seine Eigenschaften zu sehen, und fügen Sie es mit &amp;quot;Hinzufügen&amp;quot; der Karte hinzu.&lt;/p&gt;&lt;/body&gt;&lt;/html&gt;</translation>
    </message>
    <message>
        <source>1</source>
        <translation>1</translation>
    </message>
    <message>
        <source>Image Information</source>
        <translation>Bildangaben</translation>
    </message>
    <message>
        <source>SRS:</source>
        <translation>SRS:</translation>
    </message>
    <message>
        <source>The spatial reference system for the image</source>
        <translation>Das räumliche Bezugssystem des Bildes</translation>
    </message>
    <message>
        <source>Dimensions:</source>
        <translation>Abmessungen:</translation>
    </message>
    <message>
        <source>The pixel dimensions of the image</source>
        <translation>Die Abmessungen des Bildes in Pixeln</translation>
    </message>
    <message>
        <source>Top Left X:</source>
        <translation>X oben links:</translation>
    </message>
    <message>
        <source>The top left X coordinate</source>
        <translation>Die X-Koordinate oben links</translation>
    </message>
    <message>
        <source>Top Left Y:</source>
        <translation>Y oben links:</translation>
    </message>
    <message>
        <source>The top left Y coordinate</source>
        <translation>Die Y-Koordinate oben links</translation>
    </message>
    <message>
        <source>Bottom Right X:</source>
        <translation>X unten rechts:</translation>
    </message>
    <message>
        <source>The bottom right X coordinate</source>
        <translation>Die X-Koordinate unten rechts</translation>
    </message>
    <message>
        <source>Bottom Right Y:</source>
        <translation>Y unten rechts:</translation>
    </message>
    <message>
        <source>The bottom right Y coordinate</source>
        <translation>Die Y-Koordinate unten rechts</translation>
    </message>
    <message>
        <source>Cell Size:</source>
        <translation>Zellgröße:</translation>
    </message>
    <message>
        <source>The cell dimensions of each pixel in the image.</source>
        <translation>Die Zellgröße eines Pixels des Bildes.</translation>
    </message>
    <message>
        <source>Cell Type:</source>
        <translation>Zelltyp:</translation>
    </message>
    <message>
        <source>The size of each cell. E.g. UINT8, UINT16</source>
        <translation>Die Größe einer Zelle, z. B. UINT8, UINT16</translation>
    </message>
    <message>
        <source>Bands:</source>
        <translation>Kanäle:</translation>
    </message>
    <message>
        <source>The number of bands in the image.</source>
        <translation>Die Zahl der Kanäle des Bildes.</translation>
    </message>
    <message>
        <source>Color Space:</source>
        <translation>Farbraum:</translation>
    </message>
    <message>
        <source>The colorspace, usually Greyscale, RGB or Multiband</source>
        <translation>Der Farbraum, meist Grau, RGB oder mehrkanalig</translation>
    </message>
    <message>
        <source>Opacity:</source>
        <translation>Deckkraft:</translation>
    </message>
    <message>
        <source>True if this image contains an opacity band.</source>
        <translation>Ob das Bild einen Deckkraftkanal hat.</translation>
    </message>
    <message>
        <source>Size:</source>
        <translation>Größe:</translation>
    </message>
    <message>
        <source>The size of the uncompressed dataset.</source>
        <translation>Die Größe des unkomprimierten Datensatzes.</translation>
    </message>
    <message>
        <source>Options</source>
        <translation>Optionen</translation>
    </message>
    <message>
        <source>Image Format:</source>
        <translation>Bildformat:</translation>
    </message>
    <message>
        <source>PNG8</source>
        <translation>PNG8</translation>
    </message>
    <message>
        <source>PNG24</source>
        <translation>PNG24</translation>
    </message>
    <message>
        <source>JPEG</source>
        <translation>JPEG</translation>
    </message>
    <message>
        <source>Tile Size:</source>
        <translation>Kachelgröße:</translation>
    </message>
    <message>
        <source>Layer Type:</source>
        <translation>Ebenenart:</translation>
    </message>
    <message>
        <source>ZWTP</source>
        <translation>ZWTP</translation>
    </message>
    <message>
        <source>JPIP</source>
        <translation>JPIP</translation>
    </message>
    <message>
        <source>WMS</source>
        <translation>WMS</translation>
    </message>
    <message>
        <source>WMTS</source>
        <translation>WMTS</translation>
    </message>
    <message>
        <source>Raxion</source>
        <translation>Raxion</translation>
    </message>
    <message>
        <source>Add this image to the current map.</source>
        <translation>Dieses Bild der aktuellen Karte hinzufügen.</translation>
    </message>
    <message>
        <source>Images of the server</source>
        <translation>Bilder des Servers</translation>
    </message>
</context>
</TS>
