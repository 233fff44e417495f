<?xml version="1.0" encoding="utf-8"?>
<!-- SPDX-License-Identifier: MIT -->
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>ArchivePickerPane</name>
    <message>
        <source>Choose Archive</source>
        <translation>Archiv wählen</translation>
    </message>
    <message>
        <source>Archives</source>
        <translation>Archive</translation>
    </message>
    <message>
        <source>Other &amp;Archive...</source>
        <translation>Anderes &amp;Archiv …</translation>
    </message>
    <message>
        <source>Choose the file of any other archive</source>
        <translation>Die Datei eines beliebigen anderen Archivs wählen</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Holds these items</source>
        <translation>Enthält diese Objekte</translation>
    </message>
    <message>
        <source>Captured to recently</source>
        <translation>Kürzlich hierhin gesichert</translation>
    </message>
    <message>
        <source>No archive is known yet. This command makes one:
havrel archive create FILE --repository PLACE</source>
        <translation>Noch ist kein Archiv bekannt. Dieser Befehl legt eines an:
havrel archive create DATEI --repository ORT</translation>
    </message>
</context>
<context>
    <name>CapturePreferences</name>
    <message>
        <source>1 folder</source>
        <translation>1 Ordner</translation>
    </message>
    <message>
        <source>%1 folders</source>
        <translation>%1 Ordner</translation>
    </message>
    <message>
        <source>1 file</source>
        <translation>1 Datei</translation>
    </message>
    <message>
        <source>%1 files</source>
        <translation>%1 Dateien</translation>
    </message>
    <message>
        <source>'%1'</source>
        <translation>„%1“</translation>
    </message>
    <message>
        <source>'%1' and '%2'</source>
        <translation>„%1“ und „%2“</translation>
    </message>
    <message>
        <source>'%1' and %2 other items</source>
        <translation>„%1“ und %2 weitere Objekte</translation>
    </message>
    <message>
        <source>%1 Items</source>
        <translation>%1 Objekte</translation>
    </message>
    <message>
        <source>in %1</source>
        <translation>in %1</translation>
    </message>
    <message>
        <source>%1, %2</source>
        <translation>%1, %2</translation>
    </message>
    <message>
        <source>Only folders can leave something out</source>
        <translation>Nur Ordner können etwas auslassen</translation>
    </message>
    <message>
        <source>Leave out of this folder</source>
        <translation>Aus diesem Ordner auslassen</translation>
    </message>
    <message>
        <source>Leave out of these folders</source>
        <translation>Aus diesen Ordnern auslassen</translation>
    </message>
    <message>
        <source>%1 cannot be modifed</source>
        <translation>%1 kann nicht geändert werden</translation>
    </message>
    <message>
        <source>You do not have permission to edit these preferences. Use the havrel command-line tool (sudo havrel captureprefs ...) to set them.</source>
        <translation>Sie dürfen diese Einstellungen nicht ändern. Verwenden Sie dafür das Befehlszeilenprogramm havrel (sudo havrel captureprefs ...).</translation>
    </message>
    <message>
        <source>Unable to change the capture preferences for '%1'.</source>
        <translation>Die Sicherungseinstellungen für „%1“ konnten nicht geändert werden.</translation>
    </message>
    <message>
        <source>%1 items</source>
        <translation>%1 Objekte</translation>
    </message>
    <message>
        <source>Files and folders can carry capture preferences, but not links, devices and the like, nor anything on a file system that keeps no extended attributes.</source>
        <translation>Dateien und Ordner können Sicherungseinstellungen tragen, nicht aber Verknüpfungen, Geräte und dergleichen, und nichts auf einem Dateisystem ohne erweiterte Attribute.</translation>
    </message>
    <message>
        <source>Saved, but too long to be read back: %1</source>
        <translation>Gespeichert, aber zu lang, um gelesen zu werden: %1</translation>
    </message>
    <message>
        <source>No longer there: %1</source>
        <translation>Nicht mehr da: %1</translation>
    </message>
    <message>
        <source>Changed elsewhere: %1</source>
        <translation>Anderswo geändert: %1</translation>
    </message>
    <message>
        <source>Saved, over changes made elsewhere: %1</source>
        <translation>Gespeichert, über anderswo Geändertes: %1</translation>
    </message>
    <message>
        <source>Cannot be read, and would be replaced: %1</source>
        <translation>Nicht lesbar, würde ersetzt: %1</translation>
    </message>
</context>
<context>
    <name>CapturePreferencesWindow</name>
    <message>
        <source>Capture Preferences</source>
        <translation>Sicherungseinstellungen</translation>
    </message>
    <message>
        <source>Icon</source>
        <translation>Symbol</translation>
    </message>
    <message>
        <source>Capture &amp;normally</source>
        <translation>&amp;Normal sichern</translation>
    </message>
    <message>
        <source>&amp;Exclude</source>
        <translation>&amp;Ausschließen</translation>
    </message>
    <message>
        <source>Exclude c&amp;ontents</source>
        <translation>In&amp;halt ausschließen</translation>
    </message>
    <message>
        <source>from &amp;all captures</source>
        <translation>&amp;von allen Sicherungen</translation>
    </message>
    <message>
        <source>&amp;Ignore changes</source>
        <translation>Änderungen &amp;ignorieren</translation>
    </message>
    <message>
        <source>&amp;for</source>
        <translation>&amp;für</translation>
    </message>
    <message>
        <source>Duration of ignoring changes</source>
        <translation>Wie lange Änderungen ignoriert werden</translation>
    </message>
    <message>
        <source>Unit of the duration of ignoring changes</source>
        <translation>Einheit der Dauer, für die Änderungen ignoriert werden</translation>
    </message>
    <message>
        <source>after the last capture</source>
        <translation>nach der letzten Sicherung</translation>
    </message>
    <message>
        <source>&amp;between</source>
        <translation>&amp;zwischen</translation>
    </message>
    <message>
        <source>Ignore changes between two times of day</source>
        <translation>Änderungen zwischen zwei Uhrzeiten ignorieren</translation>
    </message>
    <message>
        <source>Start of ignoring changes</source>
        <translation>Beginn der Zeit, in der Änderungen ignoriert werden</translation>
    </message>
    <message>
        <source>and</source>
        <translation>und</translation>
    </message>
    <message>
        <source>End of ignoring changes</source>
        <translation>Ende der Zeit, in der Änderungen ignoriert werden</translation>
    </message>
    <message>
        <source>&amp;Scrape</source>
        <translation>&amp;Bereinigen</translation>
    </message>
    <message>
        <source>Scrape con&amp;tents</source>
        <translation>Inhal&amp;t bereinigen</translation>
    </message>
    <message>
        <source>as soon as ca&amp;ptured</source>
        <translation>sobald &amp;gesichert</translation>
    </message>
    <message>
        <source>Scrape some time after being captured</source>
        <translation>Einige Zeit nach der Sicherung bereinigen</translation>
    </message>
    <message>
        <source>Duration until scraping</source>
        <translation>Dauer bis zum Bereinigen</translation>
    </message>
    <message>
        <source>Unit of the duration until scraping</source>
        <translation>Einheit der Dauer bis zum Bereinigen</translation>
    </message>
    <message>
        <source>after being &amp;captured</source>
        <translation>nach der Siche&amp;rung</translation>
    </message>
    <message>
        <source>?</source>
        <translation>?</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Hilfe</translation>
    </message>
    <message>
        <source>Explain this window</source>
        <translation>Dieses Fenster erklären</translation>
    </message>
    <message>
        <source>F1</source>
        <translation>F1</translation>
    </message>
</context>
<context>
    <name>HelpPages</name>
    <message>
        <source>havrel.html</source>
        <extracomment>The file of the help page in this language, of those in resources/help.</extracomment>
        <translation>havrel_de.html</translation>
    </message>
</context>
<context>
    <name>ItemPass</name>
    <message>
        <source>Stop</source>
        <translation>Abbrechen</translation>
    </message>
</context>
<context>
    <name>PatternTableExpertCell</name>
    <message>
        <source>Complete pattern of what to leave out</source>
        <translation>Vollständiges Muster dessen, was ausgelassen wird</translation>
    </message>
    <message>
        <source>complete</source>
        <comment>kind of a pattern</comment>
        <translation>vollständig</translation>
    </message>
</context>
<context>
    <name>PatternTableMultipleCell</name>
    <message>
        <source>other patterns, different in each folder</source>
        <translation>andere Muster, in jedem Ordner verschieden</translation>
    </message>
</context>
<context>
    <name>PatternTablePane</name>
    <message>
        <source>Patterns of what is left out</source>
        <translation>Muster dessen, was ausgelassen wird</translation>
    </message>
    <message>
        <source>Add a pattern</source>
        <translation>Ein Muster hinzufügen</translation>
    </message>
    <message>
        <source>Remove the selected patterns</source>
        <translation>Die ausgewählten Muster entfernen</translation>
    </message>
</context>
<context>
    <name>PatternTableSimpleCell</name>
    <message>
        <source>in</source>
        <comment>in (a folder) leave out (a pattern)</comment>
        <translation>in</translation>
    </message>
    <message>
        <source>this folder</source>
        <translation>diesem Ordner</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>leave out</source>
        <comment>in (a folder) leave out (a pattern)</comment>
        <translation>auslassen:</translation>
    </message>
    <message>
        <source>pattern</source>
        <translation>Muster</translation>
    </message>
    <message>
        <source>Pattern of names to leave out</source>
        <translation>Muster der Namen, die ausgelassen werden</translation>
    </message>
    <message>
        <source>and below</source>
        <translation>und darunter</translation>
    </message>
    <message>
        <source>Also in all folders below</source>
        <translation>Auch in allen Ordnern darunter</translation>
    </message>
</context>
<context>
    <name>havrel::AlertBox</name>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>havrel::ArchiveOpenPanel</name>
    <message>
        <source>Choose Archive</source>
        <translation>Archiv wählen</translation>
    </message>
    <message>
        <source>Archives (*.%1)</source>
        <translation>Archive (*.%1)</translation>
    </message>
</context>
<context>
    <name>havrel::ArchivePickerPaneController</name>
    <message>
        <source>Choose archive:</source>
        <translation>Archiv wählen:</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
</context>
<context>
    <name>havrel::ArchivePickerViewController</name>
    <message>
        <source>in %1</source>
        <translation>in %1</translation>
    </message>
    <message>
        <source>last captured to %1</source>
        <translation>zuletzt hierhin gesichert: %1</translation>
    </message>
</context>
<context>
    <name>havrel::CapturePreferencesController</name>
    <message>
        <source>Reading the capture preferences of %1 items...</source>
        <translation>Die Sicherungseinstellungen von %1 Objekten werden gelesen …</translation>
    </message>
    <message>
        <source>Writing the capture preferences of %1 items...</source>
        <translation>Die Sicherungseinstellungen von %1 Objekten werden geschrieben …</translation>
    </message>
    <message>
        <source>stopped after %1 of %2 items</source>
        <translation>nach %1 von %2 Objekten abgebrochen</translation>
    </message>
</context>
<context>
    <name>havrel::CapturePreferencesWindow</name>
    <message>
        <source>minutes</source>
        <translation>Minuten</translation>
    </message>
    <message>
        <source>hours</source>
        <translation>Stunden</translation>
    </message>
    <message>
        <source>days</source>
        <translation>Tage</translation>
    </message>
    <message>
        <source>weeks</source>
        <translation>Wochen</translation>
    </message>
    <message>
        <source>months</source>
        <translation>Monate</translation>
    </message>
    <message>
        <source>years</source>
        <translation>Jahre</translation>
    </message>
    <message>
        <source>Capture Preferences of %1</source>
        <translation>Sicherungseinstellungen: %1</translation>
    </message>
</context>
<context>
    <name>havrel::HavrelServices</name>
    <message numerus="yes">
        <source>Reveal %n items in:</source>
        <translation>
            <numerusform>%n Objekt zeigen in:</numerusform>
            <numerusform>%n Objekte zeigen in:</numerusform>
        </translation>
    </message>
    <message>
        <source>Reveal "%1" in:</source>
        <translation>„%1“ zeigen in:</translation>
    </message>
    <message>
        <source>Reveal</source>
        <translation>Zeigen</translation>
    </message>
    <message numerus="yes">
        <source>Capture %n items to:</source>
        <translation>
            <numerusform>%n Objekt sichern in:</numerusform>
            <numerusform>%n Objekte sichern in:</numerusform>
        </translation>
    </message>
    <message>
        <source>Capture "%1" to:</source>
        <translation>„%1“ sichern in:</translation>
    </message>
    <message>
        <source>Capture</source>
        <translation>Sichern</translation>
    </message>
</context>
<context>
    <name>havrel::PatternTablePane</name>
    <message>
        <source>&amp;Glob Pattern</source>
        <translation>&amp;Glob-Muster</translation>
    </message>
    <message>
        <source>&amp;Regular Expression</source>
        <translation>&amp;Regulärer Ausdruck</translation>
    </message>
    <message>
        <source>&amp;Complete Pattern</source>
        <translation>&amp;Vollständiges Muster</translation>
    </message>
    <message>
        <source>Nothing is left out. Press + to add a pattern, or drop patterns here as text.</source>
        <translation>Es wird nichts ausgelassen. Fügen Sie mit + ein Muster hinzu, oder ziehen Sie Muster als Text hierher.</translation>
    </message>
    <message>
        <source>all names that end in .tmp</source>
        <translation>alle Namen, die auf .tmp enden</translation>
    </message>
    <message>
        <source>all names made of digits</source>
        <translation>alle Namen aus Ziffern</translation>
    </message>
    <message>
        <source>caches in Library and below</source>
        <translation>Caches in Library und darunter</translation>
    </message>
</context>
<context>
    <name>havrel::PatternTableSimpleCellView</name>
    <message>
        <source>leave out %1</source>
        <translation>%1 auslassen</translation>
    </message>
    <message>
        <source>in %1 leave out %2</source>
        <translation>in %1 %2 auslassen</translation>
    </message>
</context>
<context>
    <name>havrel::PatternTableViewController</name>
    <message>
        <source>Add Patterns</source>
        <translation>Muster hinzufügen</translation>
    </message>
    <message>
        <source>Remove Patterns</source>
        <translation>Muster entfernen</translation>
    </message>
    <message>
        <source>Change Pattern</source>
        <translation>Muster ändern</translation>
    </message>
</context>
<context>
    <name>havrel::ServiceApplicationDelegate</name>
    <message>
        <source>Cannot connnect with Havrel %1.</source>
        <translation>Keine Verbindung mit Havrel %1 möglich.</translation>
    </message>
    <message>
        <source>Service is unable to connect with a Havrel component. Launch Havrel to reinstall the component and try again.</source>
        <translation>Der Dienst kann sich nicht mit einer Komponente von Havrel verbinden. Starten Sie Havrel, um die Komponente neu zu installieren, und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>Launch Havrel</source>
        <translation>Havrel starten</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>havrel::StatusLine</name>
    <message>
        <source>Sa&amp;ve Now</source>
        <translation>&amp;Jetzt speichern</translation>
    </message>
    <message>
        <source>Saved</source>
        <translation>Gespeichert</translation>
    </message>
    <message>
        <source>Saving in 1 second</source>
        <translation>Wird in 1 Sekunde gespeichert</translation>
    </message>
    <message>
        <source>Saving in %1 seconds</source>
        <translation>Wird in %1 Sekunden gespeichert</translation>
    </message>
    <message>
        <source>Not saved: %1</source>
        <translation>Nicht gespeichert: %1</translation>
    </message>
    <message>
        <source>&amp;Reload</source>
        <translation>Neu &amp;laden</translation>
    </message>
    <message>
        <source>Shows what is stored now, and forgets what is not saved</source>
        <translation>Zeigt, was jetzt gespeichert ist, und verwirft, was nicht gespeichert ist</translation>
    </message>
    <message>
        <source>%1, over changes made elsewhere</source>
        <translation>%1, über anderswo Geändertes</translation>
    </message>
</context>
<context>
    <name>havrel::TableView</name>
    <message>
        <source>row %1 of %2</source>
        <translation>Zeile %1 von %2</translation>
    </message>
</context>
</TS>
