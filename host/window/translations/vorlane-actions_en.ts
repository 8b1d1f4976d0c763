<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>MainWindow</name>
    <message numerus="yes">
        <source>Change %n file(s) without a backup?</source>
        <translation>
            <numerusform>Change %n file without a backup?</numerusform>
            <numerusform>Change %n files without a backup?</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n file(s)</source>
        <translation>
            <numerusform>%n file</numerusform>
            <numerusform>%n files</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Reading, %n file(s) left…</source>
        <translation>
            <numerusform>Reading, %n file left…</numerusform>
            <numerusform>Reading, %n files left…</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>NoticeBar</name>
    <message numerus="yes">
        <source>%n More…</source>
        <translation>
            <numerusform>%n More…</numerusform>
            <numerusform>%n More…</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>and %n more</source>
        <translation>
            <numerusform>and %n more</numerusform>
            <numerusform>and %n more</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>OutputPanel</name>
    <message numerus="yes">
        <source>&amp;Run on %n File(s)</source>
        <translation>
            <numerusform>&amp;Run on %n File</numerusform>
            <numerusform>&amp;Run on %n Files</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n done</source>
        <translation>
            <numerusform>%n done</numerusform>
            <numerusform>%n done</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n already right</source>
        <translation>
            <numerusform>%n already right</numerusform>
            <numerusform>%n already right</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n failed</source>
        <translation>
            <numerusform>%n failed</numerusform>
            <numerusform>%n failed</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n need a password</source>
        <translation>
            <numerusform>%n needs a password</numerusform>
            <numerusform>%n need a password</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n not begun</source>
        <translation>
            <numerusform>%n not begun</numerusform>
            <numerusform>%n not begun</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>PasswordDialog</name>
    <message numerus="yes">
        <source>%n file(s) need a password:</source>
        <translation>
            <numerusform>%n file needs a password:</numerusform>
            <numerusform>%n files need a password:</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>PreviewPanel</name>
    <message numerus="yes">
        <source>%n relative link(s)</source>
        <translation>
            <numerusform>%n relative link</numerusform>
            <numerusform>%n relative links</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n of them differ between viewers</source>
        <translation>
            <numerusform>%n of them differs between viewers</numerusform>
            <numerusform>%n of them differ between viewers</numerusform>
        </translation>
    </message>
</context>
</TS>
