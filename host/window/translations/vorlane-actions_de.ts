<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>MainWindow</name>
    <message>
        <source>PDF Actions</source>
        <translation>PDF-Aktionen</translation>
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
