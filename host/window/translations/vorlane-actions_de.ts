<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>ActionChoice</name>
    <message>
        <source>Choose a folder for the results first.</source>
        <translation>Wählen Sie zuerst einen Ordner für die Ergebnisse.</translation>
    </message>
    <message>
        <source>Give the folder for the results with its whole path.</source>
        <translation>Geben Sie den Ordner für die Ergebnisse mit seinem vollen Pfad an.</translation>
    </message>
    <message>
        <source>The ending of the backups cannot contain a slash.</source>
        <translation>Die Endung der Sicherungskopien darf keinen Schrägstrich enthalten.</translation>
    </message>
    <message>
        <source>The ending of the backups cannot be &quot;.pdf&quot;: they would be taken for documents.</source>
        <translation>Die Endung der Sicherungskopien darf nicht „.pdf“ sein: Sie würden für Dokumente gehalten.</translation>
    </message>
    <message>
        <source>Choose what to do first.</source>
        <translation>Wählen Sie zuerst, was zu tun ist.</translation>
    </message>
    <message>
        <source>The file %1 is not there any more. Choose what to do again.</source>
        <translation>Die Datei %1 ist nicht mehr da. Wählen Sie neu, was zu tun ist.</translation>
    </message>
</context>
<context>
    <name>ActionText</name>
    <message>
        <source>Set Base URL</source>
        <translation>Basis-URL setzen</translation>
    </message>
    <message>
        <source>Make Links Absolute</source>
        <translation>Links absolut machen</translation>
    </message>
    <message>
        <source>Document Properties</source>
        <translation>Dokumenteigenschaften</translation>
    </message>
    <message>
        <source>Base URL</source>
        <translation>Basis-URL</translation>
    </message>
    <message>
        <source>removes the base URL</source>
        <translation>entfernt die Basis-URL</translation>
    </message>
    <message>
        <source>uses the document&apos;s own base URL</source>
        <translation>nimmt die eigene Basis-URL des Dokuments</translation>
    </message>
    <message>
        <source>Remove the document&apos;s base URL afterwards</source>
        <translation>Danach die Basis-URL des Dokuments entfernen</translation>
    </message>
</context>
<context>
    <name>ActionsPanel</name>
    <message>
        <source>What to do</source>
        <translation>Was zu tun ist</translation>
    </message>
    <message>
        <source>Enter the settings of &quot;%1&quot;</source>
        <translation>Einstellungen von „%1“ eingeben</translation>
    </message>
    <message>
        <source>No action is installed</source>
        <translation>Es ist keine Aktion installiert</translation>
    </message>
    <message>
        <source>Favorites</source>
        <translation>Favoriten</translation>
    </message>
    <message>
        <source>Recent</source>
        <translation>Zuletzt verwendet</translation>
    </message>
    <message>
        <source>Enter &amp;Settings…</source>
        <translation>&amp;Einstellungen eingeben…</translation>
    </message>
    <message>
        <source>&amp;Use</source>
        <translation>&amp;Verwenden</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>&amp;Edit Settings…</source>
        <translation>&amp;Einstellungen bearbeiten…</translation>
    </message>
    <message>
        <source>&amp;Rename…</source>
        <translation>&amp;Umbenennen…</translation>
    </message>
    <message>
        <source>Re&amp;move…</source>
        <translation>En&amp;tfernen…</translation>
    </message>
    <message>
        <source>Show in &amp;Folder</source>
        <translation>Im &amp;Ordner zeigen</translation>
    </message>
    <message>
        <source>&amp;Take Off This List</source>
        <translation>Aus dieser Liste &amp;nehmen</translation>
    </message>
    <message>
        <source>&amp;Clear Recent Settings</source>
        <translation>&amp;Zuletzt verwendete Einstellungen löschen</translation>
    </message>
    <message>
        <source>Rename Favorite</source>
        <translation>Favorit umbenennen</translation>
    </message>
    <message>
        <source>Name:</source>
        <translation>Name:</translation>
    </message>
    <message>
        <source>There is a favorite of this name. Choose another name.</source>
        <translation>Es gibt schon einen Favoriten mit diesem Namen. Wählen Sie einen anderen.</translation>
    </message>
    <message>
        <source>Remove the favorite &quot;%1&quot;?</source>
        <translation>Den Favoriten „%1“ entfernen?</translation>
    </message>
    <message>
        <source>Its settings are deleted. Files are not touched.</source>
        <translation>Seine Einstellungen werden gelöscht. Dateien bleiben, wie sie sind.</translation>
    </message>
    <message>
        <source>Remove Favorite</source>
        <translation>Favorit entfernen</translation>
    </message>
    <message>
        <source>Remove the action list &quot;%1&quot;?</source>
        <translation>Die Aktionsliste „%1“ entfernen?</translation>
    </message>
    <message>
        <source>The file %1 is deleted. Documents are not touched.</source>
        <translation>Die Datei %1 wird gelöscht. Dokumente bleiben, wie sie sind.</translation>
    </message>
    <message>
        <source>Remove List</source>
        <translation>Liste entfernen</translation>
    </message>
    <message>
        <source>Action Lists</source>
        <translation>Aktionslisten</translation>
    </message>
    <message>
        <source>Action Lists: %1</source>
        <translation>Aktionslisten: %1</translation>
    </message>
    <message>
        <source>Opened Files</source>
        <translation>Geöffnete Dateien</translation>
    </message>
    <message>
        <source>&amp;Edit List…</source>
        <translation>Liste &amp;bearbeiten…</translation>
    </message>
</context>
<context>
    <name>BatchRun</name>
    <message>
        <source>Add files first.</source>
        <translation>Fügen Sie zuerst Dateien hinzu.</translation>
    </message>
    <message>
        <source>The run could not begin. The file stays as it was.</source>
        <translation>Der Lauf konnte nicht beginnen. Die Datei bleibt, wie sie war.</translation>
    </message>
    <message>
        <source>Cancelled. The file stays as it was.</source>
        <translation>Abgebrochen. Die Datei bleibt, wie sie war.</translation>
    </message>
    <message>
        <source>Whether the file was changed is not known.</source>
        <translation>Ob die Datei geändert wurde, ist nicht bekannt.</translation>
    </message>
    <message>
        <source>vorlane-run says nothing about this file.</source>
        <translation>vorlane-run meldet nichts zu dieser Datei.</translation>
    </message>
    <message>
        <source>Cancelled.</source>
        <translation>Abgebrochen.</translation>
    </message>
    <message>
        <source>The report cannot be written to %1: %2.</source>
        <translation>Der Bericht kann nicht nach %1 geschrieben werden: %2.</translation>
    </message>
</context>
<context>
    <name>ChoiceCard</name>
    <message>
        <source>What will be done</source>
        <translation>Was getan wird</translation>
    </message>
    <message>
        <source>Favorite</source>
        <translation>Favorit</translation>
    </message>
    <message>
        <source>Save these settings as a favorite</source>
        <translation>Diese Einstellungen als Favorit speichern</translation>
    </message>
    <message>
        <source>What this action does</source>
        <translation>Was diese Aktion tut</translation>
    </message>
    <message>
        <source>Nothing chosen yet</source>
        <translation>Noch nichts gewählt</translation>
    </message>
    <message>
        <source>Choose above what is to be done with the files.</source>
        <translation>Wählen Sie oben, was mit den Dateien zu tun ist.</translation>
    </message>
    <message>
        <source>Edit &amp;Settings…</source>
        <translation>Ein&amp;stellungen…</translation>
    </message>
    <message>
        <source>Edit Li&amp;st…</source>
        <translation>Liste &amp;bearbeiten…</translation>
    </message>
</context>
<context>
    <name>Choices</name>
    <message>
        <source>The action &quot;%1&quot; is not installed. Install the plug-in that has it, or choose another action.</source>
        <translation>Die Aktion „%1“ ist nicht installiert. Installieren Sie das Plug-in, das sie enthält, oder wählen Sie eine andere Aktion.</translation>
    </message>
    <message>
        <source>The settings file %1 does not say which action its settings are for. Choose the action and enter the settings again.</source>
        <translation>In der Einstellungsdatei %1 steht nicht, für welche Aktion die Einstellungen sind. Wählen Sie die Aktion und geben Sie die Einstellungen neu ein.</translation>
    </message>
    <message>
        <source>The action list &quot;%1&quot; needs the action &quot;%2&quot;, which is not installed. Install the plug-in that has it.</source>
        <translation>Die Aktionsliste „%1“ braucht die Aktion „%2“, die nicht installiert ist. Installieren Sie das Plug-in, das sie enthält.</translation>
    </message>
</context>
<context>
    <name>FactsReader</name>
    <message>
        <source>%1 bits</source>
        <translation>%1 Bit</translation>
    </message>
    <message>
        <source>vorlane-run says nothing about this file.</source>
        <translation>vorlane-run meldet nichts zu dieser Datei.</translation>
    </message>
</context>
<context>
    <name>FavoriteDialog</name>
    <message>
        <source>Save as Favorite</source>
        <translation>Als Favorit speichern</translation>
    </message>
    <message>
        <source>Choose another picture</source>
        <translation>Ein anderes Bild wählen</translation>
    </message>
    <message>
        <source>&amp;Name:</source>
        <translation>&amp;Name:</translation>
    </message>
    <message>
        <source>Picture of the Favorite</source>
        <translation>Bild des Favoriten</translation>
    </message>
    <message>
        <source>Pictures (%1)</source>
        <translation>Bilder (%1)</translation>
    </message>
    <message>
        <source>%1 is not a picture that can be read. Choose another one.</source>
        <translation>%1 ist kein lesbares Bild. Wählen Sie ein anderes.</translation>
    </message>
    <message>
        <source>The favorite of this name will be replaced.</source>
        <translation>Der Favorit mit diesem Namen wird ersetzt.</translation>
    </message>
</context>
<context>
    <name>Favorites</name>
    <message>
        <source>Enter a name.</source>
        <translation>Geben Sie einen Namen ein.</translation>
    </message>
    <message>
        <source>A name cannot begin or end with a space or contain any of &lt; &gt; : &quot; / \ | ? *</source>
        <translation>Ein Name darf nicht mit einem Leerzeichen beginnen oder enden und keines dieser Zeichen enthalten: &lt; &gt; : &quot; / \ | ? *</translation>
    </message>
    <message>
        <source>A name cannot begin with a dot.</source>
        <translation>Ein Name darf nicht mit einem Punkt beginnen.</translation>
    </message>
    <message>
        <source>The name is too long.</source>
        <translation>Der Name ist zu lang.</translation>
    </message>
    <message>
        <source>The favorite &quot;%1&quot; could not be written to %2. Check that the folder can be written and that the disk is not full.</source>
        <translation>Der Favorit „%1“ konnte nicht nach %2 geschrieben werden. Prüfen Sie, ob der Ordner beschreibbar und auf dem Datenträger noch Platz ist.</translation>
    </message>
    <message>
        <source>The favorite &quot;%1&quot; could not be removed: %2 cannot be written.</source>
        <translation>Der Favorit „%1“ konnte nicht entfernt werden: %2 ist nicht beschreibbar.</translation>
    </message>
</context>
<context>
    <name>FileTableModel</name>
    <message>
        <source>New</source>
        <translation>Neu</translation>
    </message>
    <message>
        <source>Reading</source>
        <translation>Wird gelesen</translation>
    </message>
    <message>
        <source>Ready</source>
        <translation>Bereit</translation>
    </message>
    <message>
        <source>Unreadable</source>
        <translation>Unlesbar</translation>
    </message>
    <message>
        <source>Needs password</source>
        <translation>Passwort?</translation>
    </message>
    <message>
        <source>Waiting</source>
        <translation>Wartet</translation>
    </message>
    <message>
        <source>Done</source>
        <translation>Fertig</translation>
    </message>
    <message>
        <source>Unchanged</source>
        <translation>Unverändert</translation>
    </message>
    <message>
        <source>Failed</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>Cancelled</source>
        <translation>Abgebrochen</translation>
    </message>
    <message>
        <source>Certified</source>
        <translation>Zertifiziert</translation>
    </message>
    <message>
        <source>Signed</source>
        <translation>Signiert</translation>
    </message>
    <message>
        <source>Encrypted</source>
        <translation>Verschlüsselt</translation>
    </message>
    <message>
        <source>The links could not be counted.</source>
        <translation>Die Links konnten nicht gezählt werden.</translation>
    </message>
    <message>
        <source>Links: %1. Relative ones, which need a base URL: %2.</source>
        <translation>Links: %1. Davon relativ, also auf eine Basis-URL angewiesen: %2.</translation>
    </message>
    <message>
        <source>The certification permits no change.</source>
        <translation>Die Zertifizierung erlaubt keine Änderung.</translation>
    </message>
    <message>
        <source>The certification permits filling in forms only.</source>
        <translation>Die Zertifizierung erlaubt nur das Ausfüllen von Formularen.</translation>
    </message>
    <message>
        <source>The certification permits filling in forms and annotating.</source>
        <translation>Die Zertifizierung erlaubt das Ausfüllen von Formularen und Anmerkungen.</translation>
    </message>
    <message>
        <source>Signatures: %1</source>
        <translation>Signaturen: %1</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>Pages</source>
        <translation>Seiten</translation>
    </message>
    <message>
        <source>Base URL</source>
        <translation>Basis-URL</translation>
    </message>
    <message>
        <source>Relative links</source>
        <translation>Relative Links</translation>
    </message>
    <message>
        <source>State</source>
        <translation>Status</translation>
    </message>
    <message>
        <source>Reason</source>
        <translation>Grund</translation>
    </message>
</context>
<context>
    <name>FilesView</name>
    <message>
        <source>Filter files</source>
        <translation>Dateien filtern</translation>
    </message>
    <message>
        <source>Shows the files that have this text in one of their columns, such as &quot;failed&quot;</source>
        <translation>Zeigt die Dateien, die diesen Text in einer ihrer Spalten haben, etwa „fehler“</translation>
    </message>
    <message>
        <source>Add F&amp;older…</source>
        <translation>&amp;Ordner hinzufügen…</translation>
    </message>
    <message>
        <source>Drop PDF files or folders here</source>
        <translation>PDF-Dateien oder Ordner hier ablegen</translation>
    </message>
    <message>
        <source>Nothing is changed before you press Run.</source>
        <translation>Nichts wird geändert, bevor Sie auf „Ausführen“ drücken.</translation>
    </message>
    <message>
        <source>Files</source>
        <translation>Dateien</translation>
    </message>
    <message>
        <source>&amp;Open</source>
        <translation>Ö&amp;ffnen</translation>
    </message>
    <message>
        <source>Show in &amp;Folder</source>
        <translation>Im &amp;Ordner zeigen</translation>
    </message>
    <message>
        <source>&amp;Take Off the List</source>
        <translation>Aus der Liste &amp;nehmen</translation>
    </message>
    <message>
        <source>The files themselves stay</source>
        <translation>Die Dateien selbst bleiben</translation>
    </message>
    <message>
        <source>&amp;Copy Rows</source>
        <translation>&amp;Zeilen kopieren</translation>
    </message>
    <message>
        <source>Copy C&amp;ell</source>
        <translation>Ze&amp;lle kopieren</translation>
    </message>
    <message>
        <source>Select &amp;All</source>
        <translation>Alles au&amp;swählen</translation>
    </message>
    <message>
        <source>Enter &amp;Password…</source>
        <translation>&amp;Passwort eingeben…</translation>
    </message>
    <message>
        <source>%1 of %2 shown</source>
        <translation>%1 von %2 gezeigt</translation>
    </message>
    <message>
        <source>A&amp;dd Files…</source>
        <translation>Dateien hin&amp;zufügen…</translation>
    </message>
</context>
<context>
    <name>FolderScanner</name>
    <message>
        <source>More such problems: %1</source>
        <translation>Weitere solche Probleme: %1</translation>
    </message>
    <message>
        <source>not a file</source>
        <translation>keine Datei</translation>
    </message>
    <message>
        <source>not a PDF file</source>
        <translation>keine PDF-Datei</translation>
    </message>
    <message>
        <source>the link leads to no file</source>
        <translation>der Link führt zu keiner Datei</translation>
    </message>
    <message>
        <source>no PDF file in this folder</source>
        <translation>keine PDF-Datei in diesem Ordner</translation>
    </message>
</context>
<context>
    <name>HelpWindow</name>
    <message>
        <source>Help: %1</source>
        <translation>Hilfe: %1</translation>
    </message>
    <message>
        <source>&lt;p&gt;The action &quot;%1&quot; has no help page.&lt;/p&gt;</source>
        <translation>&lt;p&gt;Die Aktion „%1“ hat keine Hilfeseite.&lt;/p&gt;</translation>
    </message>
</context>
<context>
    <name>ListDialog</name>
    <message>
        <source>Edit Action List</source>
        <translation>Aktionsliste bearbeiten</translation>
    </message>
    <message>
        <source>&amp;Name:</source>
        <translation>&amp;Name:</translation>
    </message>
    <message>
        <source>Actions of the list</source>
        <translation>Aktionen der Liste</translation>
    </message>
    <message>
        <source>&amp;Settings…</source>
        <translation>&amp;Einstellungen…</translation>
    </message>
    <message>
        <source>&amp;Up</source>
        <translation>Nach &amp;oben</translation>
    </message>
    <message>
        <source>&amp;Down</source>
        <translation>Nach &amp;unten</translation>
    </message>
    <message>
        <source>&amp;Remove</source>
        <translation>&amp;Entfernen</translation>
    </message>
    <message>
        <source>&amp;Add</source>
        <translation>&amp;Hinzufügen</translation>
    </message>
    <message>
        <source>%1 (not installed)</source>
        <translation>%1 (nicht installiert)</translation>
    </message>
    <message>
        <source>Add an action: a list has at least one.</source>
        <translation>Fügen Sie eine Aktion hinzu: Eine Liste hat mindestens eine.</translation>
    </message>
    <message>
        <source>Replace the action list &quot;%1&quot;?</source>
        <translation>Aktionsliste „%1“ ersetzen?</translation>
    </message>
    <message>
        <source>There is another list of this name. It is lost.</source>
        <translation>Es gibt eine andere Liste dieses Namens. Sie geht verloren.</translation>
    </message>
    <message>
        <source>Replace</source>
        <translation>Ersetzen</translation>
    </message>
    <message>
        <source>Another program has changed or removed it since it was opened here.</source>
        <translation>Ein anderes Programm hat sie geändert oder entfernt, seit sie hier geöffnet wurde.</translation>
    </message>
    <message>
        <source>The list %1 is damaged: saving it would lose what cannot be read in it.</source>
        <translation>Die Liste %1 ist beschädigt: Beim Speichern ginge verloren, was in ihr nicht lesbar ist.</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>PDF Actions</source>
        <translation>PDF-Aktionen</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>Add &amp;Files…</source>
        <translation>Dateien hin&amp;zufügen…</translation>
    </message>
    <message>
        <source>Add F&amp;older…</source>
        <translation>&amp;Ordner hinzufügen…</translation>
    </message>
    <message>
        <source>Open Action &amp;List or Settings…</source>
        <translation>Aktions&amp;liste oder Einstellungen öffnen…</translation>
    </message>
    <message>
        <source>&amp;New Window</source>
        <translation>&amp;Neues Fenster</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>&amp;Schließen</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <source>&amp;Paste Files</source>
        <translation>Dateien &amp;einfügen</translation>
    </message>
    <message>
        <source>F&amp;ilter</source>
        <translation>F&amp;iltern</translation>
    </message>
    <message>
        <source>Take &amp;All Off the List</source>
        <translation>&amp;Alle aus der Liste nehmen</translation>
    </message>
    <message>
        <source>&amp;Action</source>
        <translation>&amp;Aktion</translation>
    </message>
    <message>
        <source>&amp;Run</source>
        <translation>Aus&amp;führen</translation>
    </message>
    <message>
        <source>Run on &amp;Selected Files</source>
        <translation>Mit au&amp;sgewählten Dateien ausführen</translation>
    </message>
    <message>
        <source>&amp;Cancel the Run</source>
        <translation>Lauf abb&amp;rechen</translation>
    </message>
    <message>
        <source>&amp;Edit Settings…</source>
        <translation>&amp;Einstellungen bearbeiten…</translation>
    </message>
    <message>
        <source>Save as &amp;Favorite…</source>
        <translation>Als Fa&amp;vorit speichern…</translation>
    </message>
    <message>
        <source>Enter &amp;Password…</source>
        <translation>&amp;Passwort eingeben…</translation>
    </message>
    <message>
        <source>Copy as Co&amp;mmand</source>
        <translation>Als &amp;Befehl kopieren</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>An&amp;sicht</translation>
    </message>
    <message>
        <source>&amp;Preview</source>
        <translation>&amp;Vorschau</translation>
    </message>
    <message>
        <source>&amp;Read Files Again</source>
        <translation>Dateien &amp;neu lesen</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>&amp;Help on the Action</source>
        <translation>&amp;Hilfe zur Aktion</translation>
    </message>
    <message>
        <source>&amp;About PDF Actions</source>
        <translation>Ü&amp;ber PDF-Aktionen</translation>
    </message>
    <message>
        <source>About PDF Actions</source>
        <translation>Über PDF-Aktionen</translation>
    </message>
    <message>
        <source>PDF Actions %1
Sets the base URL of PDF files and runs other actions over them.
Licence: Apache-2.0</source>
        <translation>PDF-Aktionen %1
Setzt die Basis-URL von PDF-Dateien und führt andere Aktionen mit ihnen aus.
Lizenz: Apache-2.0</translation>
    </message>
    <message>
        <source>No PDF file is in there.</source>
        <translation>Darin ist keine PDF-Datei.</translation>
    </message>
    <message>
        <source>Add Files</source>
        <translation>Dateien hinzufügen</translation>
    </message>
    <message>
        <source>PDF files (*.pdf *.PDF)</source>
        <translation>PDF-Dateien (*.pdf *.PDF)</translation>
    </message>
    <message>
        <source>All files (*)</source>
        <translation>Alle Dateien (*)</translation>
    </message>
    <message>
        <source>Add Folder</source>
        <translation>Ordner hinzufügen</translation>
    </message>
    <message>
        <source>Open Action List or Settings</source>
        <translation>Aktionsliste oder Einstellungen öffnen</translation>
    </message>
    <message>
        <source>Action lists and settings (*.xqq *.tsf)</source>
        <translation>Aktionslisten und Einstellungen (*.xqq *.tsf)</translation>
    </message>
    <message>
        <source>The clipboard holds no files. Copy files in the file manager and paste them here.</source>
        <translation>In der Zwischenablage sind keine Dateien. Kopieren Sie Dateien im Dateimanager und fügen Sie sie hier ein.</translation>
    </message>
    <message>
        <source>The action &quot;%1&quot; is not installed.</source>
        <translation>Die Aktion „%1“ ist nicht installiert.</translation>
    </message>
    <message>
        <source>The settings could not be written to %1. Check that the folder can be written and that the disk is not full.</source>
        <translation>Die Einstellungen konnten nicht nach %1 geschrieben werden. Prüfen Sie, ob der Ordner beschreibbar und auf dem Datenträger noch Platz ist.</translation>
    </message>
    <message>
        <source>The action list %1 could not be written. Choose another name, and check that the folder can be written and that the disk is not full.</source>
        <translation>Die Aktionsliste %1 konnte nicht geschrieben werden. Wählen Sie einen anderen Namen und prüfen Sie, ob der Ordner beschreibbar und auf dem Datenträger noch Platz ist.</translation>
    </message>
    <message>
        <source>Saved in the action list %1</source>
        <translation>In der Aktionsliste %1 gespeichert</translation>
    </message>
    <message>
        <source>Saved as the favorite &quot;%1&quot;</source>
        <translation>Als Favorit „%1“ gespeichert</translation>
    </message>
    <message>
        <source>Add the files that are to be worked on.</source>
        <translation>Fügen Sie die Dateien hinzu, die bearbeitet werden sollen.</translation>
    </message>
    <message>
        <source>Choose on the left what is to be done with the files.</source>
        <translation>Wählen Sie links, was mit den Dateien zu tun ist.</translation>
    </message>
    <message numerus="yes">
        <source>Change %n file(s) without a backup?</source>
        <translation>
            <numerusform>%n Datei ohne Sicherungskopie ändern?</numerusform>
            <numerusform>%n Dateien ohne Sicherungskopie ändern?</numerusform>
        </translation>
    </message>
    <message>
        <source>The originals cannot be brought back.</source>
        <translation>Die Originale lassen sich nicht wiederherstellen.</translation>
    </message>
    <message>
        <source>Change Without Backup</source>
        <translation>Ohne Sicherungskopie ändern</translation>
    </message>
    <message>
        <source>No program is there to open the folder %1.</source>
        <translation>Es gibt kein Programm, das den Ordner %1 öffnet.</translation>
    </message>
    <message>
        <source>Save Report</source>
        <translation>Bericht speichern</translation>
    </message>
    <message>
        <source>Reports (*.json)</source>
        <translation>Berichte (*.json)</translation>
    </message>
    <message>
        <source>Reports, one line for each file (*.jsonl)</source>
        <translation>Berichte, eine Zeile je Datei (*.jsonl)</translation>
    </message>
    <message>
        <source>The command is in the clipboard.</source>
        <translation>Der Befehl ist in der Zwischenablage.</translation>
    </message>
    <message>
        <source>The preview comes back after the run.</source>
        <translation>Die Vorschau kommt nach dem Lauf wieder.</translation>
    </message>
    <message>
        <source>Select a file to see what would change in it.</source>
        <translation>Wählen Sie eine Datei aus, um zu sehen, was sich in ihr ändern würde.</translation>
    </message>
    <message>
        <source>Choose on the left what is to be done: here you see then what would change in the file, and where its links lead.</source>
        <translation>Wählen Sie links, was zu tun ist: Dann sehen Sie hier, was sich in der Datei ändern würde und wohin ihre Links führen.</translation>
    </message>
    <message numerus="yes">
        <source>%n file(s)</source>
        <translation>
            <numerusform>%n Datei</numerusform>
            <numerusform>%n Dateien</numerusform>
        </translation>
    </message>
    <message>
        <source>Looking for PDF files…</source>
        <translation>PDF-Dateien werden gesucht…</translation>
    </message>
    <message numerus="yes">
        <source>Reading, %n file(s) left…</source>
        <translation>
            <numerusform>Wird gelesen, noch %n Datei…</numerusform>
            <numerusform>Wird gelesen, noch %n Dateien…</numerusform>
        </translation>
    </message>
    <message>
        <source>Stop the run and close the window?</source>
        <translation>Den Lauf anhalten und das Fenster schließen?</translation>
    </message>
    <message>
        <source>Files in hand are finished first. The files after them are left as they are.</source>
        <translation>Angefangene Dateien werden noch fertig. Die übrigen bleiben, wie sie sind.</translation>
    </message>
    <message>
        <source>Stop and Close</source>
        <translation>Anhalten und schließen</translation>
    </message>
    <message>
        <source>The report is saved.</source>
        <translation>Der Bericht ist gespeichert.</translation>
    </message>
    <message>
        <source>Tables for spreadsheets (*.csv)</source>
        <translation>Tabellen für Tabellenprogramme (*.csv)</translation>
    </message>
</context>
<context>
    <name>NoticeBar</name>
    <message>
        <source>Close this message</source>
        <translation>Diese Meldung schließen</translation>
    </message>
    <message numerus="yes">
        <source>%n More…</source>
        <translation>
            <numerusform>%n weitere…</numerusform>
            <numerusform>%n weitere…</numerusform>
        </translation>
    </message>
    <message>
        <source>Messages</source>
        <translation>Meldungen</translation>
    </message>
    <message numerus="yes">
        <source>and %n more</source>
        <translation>
            <numerusform>und %n weitere</numerusform>
            <numerusform>und %n weitere</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>OutputPanel</name>
    <message>
        <source>Save changed copies in a folder</source>
        <translation>Geänderte Kopien in einem Ordner speichern</translation>
    </message>
    <message>
        <source>Resul&amp;ts:</source>
        <translation>Ergebn&amp;isse:</translation>
    </message>
    <message>
        <source>Where results go</source>
        <translation>Wohin die Ergebnisse kommen</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>Folder of the results</source>
        <translation>Ordner der Ergebnisse</translation>
    </message>
    <message>
        <source>Choose…</source>
        <translation>Auswählen…</translation>
    </message>
    <message>
        <source>Choose the folder of the results</source>
        <translation>Ordner der Ergebnisse auswählen</translation>
    </message>
    <message>
        <source>Allow breaking si&amp;gnatures</source>
        <translation>Bruch von Si&amp;gnaturen erlauben</translation>
    </message>
    <message>
        <source>Signed files keep their signatures wherever that is possible. With this, files whose signatures would break are changed too; otherwise they are left as they are, and the list says so.</source>
        <translation>Signierte Dateien behalten ihre Signaturen, wo immer das möglich ist. Hiermit werden auch Dateien geändert, deren Signaturen dabei brechen; sonst bleiben sie, wie sie sind, und die Liste sagt es.</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Fortschritt</translation>
    </message>
    <message>
        <source>Tr&amp;y Failed Again</source>
        <translation>Fehlgeschlagene erneut &amp;versuchen</translation>
    </message>
    <message>
        <source>Ope&amp;n Results</source>
        <translation>Ergebnisse öff&amp;nen</translation>
    </message>
    <message>
        <source>Save Re&amp;port…</source>
        <translation>Be&amp;richt speichern…</translation>
    </message>
    <message>
        <source>&amp;Run</source>
        <translation>Aus&amp;führen</translation>
    </message>
    <message numerus="yes">
        <source>&amp;Run on %n File(s)</source>
        <translation>
            <numerusform>Mit %n Datei aus&amp;führen</numerusform>
            <numerusform>Mit %n Dateien aus&amp;führen</numerusform>
        </translation>
    </message>
    <message>
        <source>Folder of the Results</source>
        <translation>Ordner der Ergebnisse</translation>
    </message>
    <message>
        <source>%1 of %2 done</source>
        <translation>%1 von %2 fertig</translation>
    </message>
    <message>
        <source>Stopping. Files in hand are finished first.</source>
        <translation>Wird angehalten. Angefangene Dateien werden noch fertig.</translation>
    </message>
    <message numerus="yes">
        <source>%n done</source>
        <translation>
            <numerusform>%n fertig</numerusform>
            <numerusform>%n fertig</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n already right</source>
        <translation>
            <numerusform>%n schon richtig</numerusform>
            <numerusform>%n schon richtig</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n failed</source>
        <translation>
            <numerusform>%n fehlgeschlagen</numerusform>
            <numerusform>%n fehlgeschlagen</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n need a password</source>
        <translation>
            <numerusform>%n braucht ein Passwort</numerusform>
            <numerusform>%n brauchen ein Passwort</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n not begun</source>
        <translation>
            <numerusform>%n nicht begonnen</numerusform>
            <numerusform>%n nicht begonnen</numerusform>
        </translation>
    </message>
    <message>
        <source>Change the files, keep the originals as .bak</source>
        <translation>Dateien ändern, Originale als .bak behalten</translation>
    </message>
    <message>
        <source>Change the files, keep no originals</source>
        <translation>Dateien ändern, Originale nicht behalten</translation>
    </message>
    <message>
        <source>&amp;Continue</source>
        <translation>&amp;Fortsetzen</translation>
    </message>
</context>
<context>
    <name>PasswordDialog</name>
    <message>
        <source>Password</source>
        <translation>Passwort</translation>
    </message>
    <message numerus="yes">
        <source>%n file(s) need a password:</source>
        <translation>
            <numerusform>%n Datei braucht ein Passwort:</numerusform>
            <numerusform>%n Dateien brauchen ein Passwort:</numerusform>
        </translation>
    </message>
    <message>
        <source>&amp;Show the password</source>
        <translation>Passwort an&amp;zeigen</translation>
    </message>
    <message>
        <source>It is tried on all files and forgotten when the window closes.</source>
        <translation>Es wird bei allen Dateien versucht und vergessen, wenn sich das Fenster schließt.</translation>
    </message>
    <message>
        <source>&amp;Password:</source>
        <translation>&amp;Passwort:</translation>
    </message>
</context>
<context>
    <name>Preview</name>
    <message>
        <source>vorlane-run says nothing about this file.</source>
        <translation>vorlane-run meldet nichts zu dieser Datei.</translation>
    </message>
    <message>
        <source>The links cannot be shown: %1</source>
        <translation>Die Links lassen sich nicht zeigen: %1</translation>
    </message>
    <message>
        <source>Not all links could be read.</source>
        <translation>Nicht alle Links konnten gelesen werden.</translation>
    </message>
    <message>
        <source>No viewer can use this base URL.</source>
        <translation>Kein Anzeigeprogramm kann diese Basis-URL verwenden.</translation>
    </message>
</context>
<context>
    <name>PreviewPanel</name>
    <message>
        <source>Preview</source>
        <translation>Vorschau</translation>
    </message>
    <message>
        <source>Looking…</source>
        <translation>Wird nachgesehen…</translation>
    </message>
    <message>
        <source>Relative links</source>
        <translation>Relative Links</translation>
    </message>
    <message>
        <source>Page</source>
        <translation>Seite</translation>
    </message>
    <message>
        <source>Link</source>
        <translation>Link</translation>
    </message>
    <message>
        <source>Leads to</source>
        <translation>Führt zu</translation>
    </message>
    <message>
        <source>Base URL now:</source>
        <translation>Basis-URL jetzt:</translation>
    </message>
    <message>
        <source>Afterwards:</source>
        <translation>Danach:</translation>
    </message>
    <message>
        <source>Select a file to see what would change in it.</source>
        <translation>Wählen Sie eine Datei aus, um zu sehen, was sich in ihr ändern würde.</translation>
    </message>
    <message>
        <source>Preview: %1</source>
        <translation>Vorschau: %1</translation>
    </message>
    <message>
        <source>Enter password…</source>
        <translation>Passwort eingeben…</translation>
    </message>
    <message>
        <source>none</source>
        <translation>keine</translation>
    </message>
    <message>
        <source>(nothing changes in this file)</source>
        <translation>(in dieser Datei ändert sich nichts)</translation>
    </message>
    <message>
        <source>It has no relative links, so the base URL leads nowhere else.</source>
        <translation>Sie hat keine relativen Links, die Basis-URL ändert also kein Ziel.</translation>
    </message>
    <message numerus="yes">
        <source>%n relative link(s)</source>
        <translation>
            <numerusform>%n relativer Link</numerusform>
            <numerusform>%n relative Links</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n of them differ between viewers</source>
        <translation>
            <numerusform>%n davon führt je nach Betrachter woandershin</numerusform>
            <numerusform>%n davon führen je nach Betrachter woandershin</numerusform>
        </translation>
    </message>
    <message>
        <source>the first %1 are shown</source>
        <translation>die ersten %1 werden gezeigt</translation>
    </message>
    <message>
        <source>Viewers differ</source>
        <translation>Betrachter uneinig</translation>
    </message>
    <message>
        <source>no link</source>
        <translation>kein Link</translation>
    </message>
    <message>
        <source>Add the slash</source>
        <translation>Schrägstrich anfügen</translation>
    </message>
</context>
<context>
    <name>RecordTexts</name>
    <message>
        <source>The file needs a password.</source>
        <translation>Die Datei braucht ein Passwort.</translation>
    </message>
    <message>
        <source>None of the passwords opens the file.</source>
        <translation>Keines der Passwörter öffnet die Datei.</translation>
    </message>
    <message>
        <source>This is not a PDF file.</source>
        <translation>Das ist keine PDF-Datei.</translation>
    </message>
    <message>
        <source>The file is not there any more.</source>
        <translation>Die Datei ist nicht mehr da.</translation>
    </message>
    <message>
        <source>You may not read the file, or its disk is damaged.</source>
        <translation>Sie dürfen die Datei nicht lesen, oder ihr Datenträger ist beschädigt.</translation>
    </message>
    <message>
        <source>The file is damaged beyond repair. Get it again from where it came from.</source>
        <translation>Die Datei ist zu stark beschädigt. Holen Sie sie noch einmal von dort, woher sie kam.</translation>
    </message>
    <message>
        <source>Another program was changing the file. Try again.</source>
        <translation>Ein anderes Programm hat die Datei gerade geändert. Versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>The result cannot be written: %1.</source>
        <translation>Das Ergebnis lässt sich nicht schreiben: %1.</translation>
    </message>
    <message>
        <source>The result cannot be written.</source>
        <translation>Das Ergebnis lässt sich nicht schreiben.</translation>
    </message>
    <message>
        <source>The disk is full. Free some space and try again.</source>
        <translation>Der Datenträger ist voll. Schaffen Sie Platz und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>The file needs more memory than there is.</source>
        <translation>Die Datei braucht mehr Speicher, als da ist.</translation>
    </message>
    <message>
        <source>Its certification permits no change. To change it all the same, allow breaking signatures.</source>
        <translation>Ihre Zertifizierung erlaubt keine Änderung. Um sie trotzdem zu ändern, erlauben Sie den Bruch von Signaturen.</translation>
    </message>
    <message>
        <source>Saving would break its signatures. To save it all the same, allow breaking signatures.</source>
        <translation>Beim Speichern würden ihre Signaturen brechen. Um sie trotzdem zu speichern, erlauben Sie den Bruch von Signaturen.</translation>
    </message>
    <message>
        <source>It took too long (more than %1) and was given up.</source>
        <translation>Es hat zu lange gedauert (mehr als %1) und wurde aufgegeben.</translation>
    </message>
    <message>
        <source>The file made vorlane-run crash (%1). It stays as it was.</source>
        <translation>An der Datei ist vorlane-run abgestürzt (%1). Sie bleibt, wie sie war.</translation>
    </message>
    <message>
        <source>Cancelled. The file stays as it was.</source>
        <translation>Abgebrochen. Die Datei bleibt, wie sie war.</translation>
    </message>
    <message>
        <source>It is the same file as %1.</source>
        <translation>Es ist dieselbe Datei wie %1.</translation>
    </message>
    <message>
        <source>The backup cannot be made: %1.</source>
        <translation>Die Sicherungskopie lässt sich nicht anlegen: %1.</translation>
    </message>
    <message>
        <source>The base URL does not end in a slash. Firefox then drops its last part; Chrome and MuPDF join it with the link.</source>
        <translation>Die Basis-URL endet nicht mit einem Schrägstrich. Firefox lässt dann ihren letzten Teil weg; Chrome und MuPDF hängen den Link direkt an.</translation>
    </message>
    <message>
        <source>The base URL is written as %1.</source>
        <translation>Die Basis-URL wird als %1 geschrieben.</translation>
    </message>
    <message>
        <source>Not every viewer understands such a host name. %1 is safer.</source>
        <translation>Nicht jeder Betrachter versteht einen solchen Rechnernamen. %1 ist sicherer.</translation>
    </message>
    <message>
        <source>A base URL should have no question mark and no number sign: viewers differ in what they make of it.</source>
        <translation>Eine Basis-URL sollte kein Fragezeichen und kein Rautezeichen enthalten: Betrachter gehen verschieden damit um.</translation>
    </message>
    <message>
        <source>Its certification permits filling in forms only: readers may report the change.</source>
        <translation>Ihre Zertifizierung erlaubt nur das Ausfüllen von Formularen: Betrachter können die Änderung melden.</translation>
    </message>
    <message>
        <source>Readers may report the change, since the file is certified.</source>
        <translation>Betrachter können die Änderung melden, da die Datei zertifiziert ist.</translation>
    </message>
    <message>
        <source>The whole file is written anew, which breaks its signatures.</source>
        <translation>Die ganze Datei wird neu geschrieben; dabei brechen ihre Signaturen.</translation>
    </message>
    <message>
        <source>The whole file is written anew: %1.</source>
        <translation>Die ganze Datei wird neu geschrieben: %1.</translation>
    </message>
    <message>
        <source>This is not a file.</source>
        <translation>Das ist keine Datei.</translation>
    </message>
    <message>
        <source>A folder has the name of the result.</source>
        <translation>Ein Ordner trägt den Namen des Ergebnisses.</translation>
    </message>
    <message>
        <source>The PDF library cannot do this with the file.</source>
        <translation>Die PDF-Bibliothek kann dies mit der Datei nicht tun.</translation>
    </message>
    <message>
        <source>A part of this program is missing. Please install it again.</source>
        <translation>Ein Teil dieses Programms fehlt. Bitte installieren Sie es neu.</translation>
    </message>
    <message>
        <source>The file is encrypted in a way that this program cannot read.</source>
        <translation>Die Datei ist auf eine Weise verschlüsselt, die dieses Programm nicht lesen kann.</translation>
    </message>
    <message>
        <source>The file is too large for this program.</source>
        <translation>Die Datei ist zu groß für dieses Programm.</translation>
    </message>
    <message>
        <source>The system does not answer when the file is read. Its disk or network may be at fault.</source>
        <translation>Das System antwortet nicht, wenn die Datei gelesen wird. Ihr Datenträger oder das Netz kann gestört sein.</translation>
    </message>
    <message>
        <source>The result %1 would replace a file that this run reads. Choose another folder for the results.</source>
        <translation>Das Ergebnis %1 würde eine Datei ersetzen, die dieser Lauf liest. Wählen Sie einen anderen Ordner für die Ergebnisse.</translation>
    </message>
    <message>
        <source>The folder of the result %1 cannot be made.</source>
        <translation>Der Ordner des Ergebnisses %1 kann nicht angelegt werden.</translation>
    </message>
    <message>
        <source>The path of the file is too long for the system.</source>
        <translation>Der Pfad der Datei ist zu lang für das System.</translation>
    </message>
    <message>
        <source>The file cannot be looked up: %1.</source>
        <translation>Die Datei kann nicht nachgeschlagen werden: %1.</translation>
    </message>
    <message>
        <source>The folder for the results cannot be made: %1. Choose another one.</source>
        <translation>Der Ordner für die Ergebnisse kann nicht angelegt werden: %1. Wählen Sie einen anderen.</translation>
    </message>
    <message>
        <source>The action list %1 cannot be used: it is damaged, or cannot be read.</source>
        <translation>Die Aktionsliste %1 ist nicht verwendbar: Sie ist beschädigt oder nicht lesbar.</translation>
    </message>
    <message>
        <source>The action list %1 cannot be written. Check that its folder can be written and that the disk is not full.</source>
        <translation>Die Aktionsliste %1 kann nicht geschrieben werden. Prüfen Sie, ob ihr Ordner beschreibbar und der Datenträger nicht voll ist.</translation>
    </message>
    <message>
        <source>The settings file %1 cannot be used: it is damaged, or is for something else.</source>
        <translation>Die Einstellungsdatei %1 ist nicht verwendbar: Sie ist beschädigt oder für etwas anderes.</translation>
    </message>
    <message>
        <source>It is a path on a drive, not an address.</source>
        <translation>Sie ist ein Pfad auf einem Laufwerk, keine Adresse.</translation>
    </message>
    <message>
        <source>It has no beginning such as https://.</source>
        <translation>Ihr fehlt ein Anfang wie https://.</translation>
    </message>
    <message>
        <source>It has a space or a control character. Write a space as %20.</source>
        <translation>Sie enthält ein Leer- oder Steuerzeichen; schreiben Sie ein Leerzeichen als %20.</translation>
    </message>
    <message>
        <source>It has the character %1, which no address can have.</source>
        <translation>Sie enthält das Zeichen %1, das in keiner Adresse stehen darf.</translation>
    </message>
    <message>
        <source>It has a percent sign without two hexadecimal digits after it.</source>
        <translation>Sie enthält ein Prozentzeichen, dem nicht zwei Hexadezimalziffern folgen.</translation>
    </message>
    <message>
        <source>It is not a valid address.</source>
        <translation>Sie ist keine gültige Adresse.</translation>
    </message>
    <message>
        <source>It names no host, such as example.org.</source>
        <translation>Sie nennt keinen Rechner wie example.org.</translation>
    </message>
    <message>
        <source>Not every viewer follows links that begin with %1:.</source>
        <translation>Nicht jedes Anzeigeprogramm folgt Links, die mit %1: beginnen.</translation>
    </message>
    <message>
        <source>The base URL has a password, which every reader of the file can see.</source>
        <translation>Die Basis-URL enthält ein Passwort, das jeder Leser der Datei sehen kann.</translation>
    </message>
    <message>
        <source>The action &quot;%1&quot; failed.</source>
        <translation>Die Aktion „%1“ ist gescheitert.</translation>
    </message>
    <message>
        <source>The folder for the results has another file of that name: %1. Choose another folder.</source>
        <translation>Im Ordner für die Ergebnisse liegt eine andere Datei dieses Namens: %1. Wählen Sie einen anderen Ordner.</translation>
    </message>
    <message>
        <source>Relative links: %1. Those that lead elsewhere in Chrome than in Firefox: %2.</source>
        <translation>Relative Links: %1. Davon führen in Chrome woandershin als in Firefox: %2.</translation>
    </message>
    <message>
        <source>The file seems to be several documents that were joined. Get each from where it came from.</source>
        <translation>Die Datei besteht offenbar aus mehreren Dokumenten, die aneinandergehängt wurden. Holen Sie jedes von dort, woher es kam.</translation>
    </message>
    <message>
        <source>The part of the file that its password belongs to is damaged. Get it again from where it came from.</source>
        <translation>Der Teil der Datei, zu dem ihr Passwort gehört, ist beschädigt. Holen Sie sie noch einmal von dort, woher sie kam.</translation>
    </message>
    <message>
        <source>A font in the file is damaged: saving could lose text. Get the file again from where it came from.</source>
        <translation>Eine Schrift in der Datei ist beschädigt: Beim Speichern könnte Text verloren gehen. Holen Sie die Datei noch einmal von dort, woher sie kam.</translation>
    </message>
</context>
<context>
    <name>RunnerProcess</name>
    <message>
        <source>Cannot start %1 (%2). It belongs to this program; please install it again.</source>
        <translation>%1 lässt sich nicht starten (%2). Es gehört zu diesem Programm; bitte installieren Sie es neu.</translation>
    </message>
    <message>
        <source>vorlane-run did not answer for %1 seconds and was ended.</source>
        <translation>vorlane-run hat %1 Sekunden lang nicht geantwortet und wurde beendet.</translation>
    </message>
    <message>
        <source>vorlane-run ended unexpectedly (signal %1).</source>
        <translation>vorlane-run ist unerwartet abgebrochen (Signal %1).</translation>
    </message>
    <message>
        <source>vorlane-run was interrupted by another program.</source>
        <translation>vorlane-run wurde von einem anderen Programm unterbrochen.</translation>
    </message>
    <message>
        <source>vorlane-run ended with the code %1. %2</source>
        <translation>vorlane-run endete mit dem Code %1. %2</translation>
    </message>
    <message>
        <source>vorlane-run printed lines that cannot be read (%1). It may be of another version than this program.</source>
        <translation>vorlane-run hat unlesbare Zeilen ausgegeben (%1). Vielleicht hat es eine andere Version als dieses Programm.</translation>
    </message>
    <message>
        <source>No temporary file can be written (%1). Free some space on the disk of one of these folders, then try again: %2</source>
        <translation>Es kann keine temporäre Datei geschrieben werden (%1). Geben Sie auf dem Datenträger eines dieser Ordner Platz frei und versuchen Sie es erneut: %2</translation>
    </message>
</context>
<context>
    <name>main</name>
    <message>
        <source>Runs actions over PDF files, in a window. See &apos;vorlane-run&apos; for the shell.</source>
        <translation>Führt Aktionen mit PDF-Dateien aus, in einem Fenster. Für die Shell gibt es »vorlane-run«.</translation>
    </message>
    <message>
        <source>Opens the settings of this action at once.</source>
        <translation>Öffnet sofort die Einstellungen dieser Aktion.</translation>
    </message>
    <message>
        <source>PDF files, folders, an action list (.xqq) or a settings file (.tsf).</source>
        <translation>PDF-Dateien, Ordner, eine Aktionsliste (.xqq) oder eine Einstellungsdatei (.tsf).</translation>
    </message>
</context>
</TS>
