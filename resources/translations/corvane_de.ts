<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en">
<context>
    <name>QVCustomControlRepresentation</name>
    <message>
        <source>Move Up</source>
        <translation>Nach oben bewegen</translation>
    </message>
    <message>
        <source>Move Up &amp; Right</source>
        <translation>Nach rechts oben bewegen</translation>
    </message>
    <message>
        <source>Move Right</source>
        <translation>Nach rechts bewegen</translation>
    </message>
    <message>
        <source>Move Down &amp; Right</source>
        <translation>Nach rechts unten bewegen</translation>
    </message>
    <message>
        <source>Move Down</source>
        <translation>Nach unten bewegen</translation>
    </message>
    <message>
        <source>Move Down &amp; Left</source>
        <translation>Nach links unten bewegen</translation>
    </message>
    <message>
        <source>Move Left</source>
        <translation>Nach links bewegen</translation>
    </message>
    <message>
        <source>Move Up &amp; Left</source>
        <translation>Nach links oben bewegen</translation>
    </message>
    <message>
        <source>Move</source>
        <translation>Bewegen</translation>
    </message>
    <message>
        <source>Move to Top Edge</source>
        <translation>Zum oberen Rand</translation>
    </message>
    <message>
        <source>Move to Top Right Corner</source>
        <translation>Zur Ecke rechts oben</translation>
    </message>
    <message>
        <source>Move to Right Edge</source>
        <translation>Zum rechten Rand</translation>
    </message>
    <message>
        <source>Move to Bottom Right Corner</source>
        <translation>Zur Ecke rechts unten</translation>
    </message>
    <message>
        <source>Move to Bottom Edge</source>
        <translation>Zum unteren Rand</translation>
    </message>
    <message>
        <source>Move to Bottom Left Corner</source>
        <translation>Zur Ecke links unten</translation>
    </message>
    <message>
        <source>Move to Left Edge</source>
        <translation>Zum linken Rand</translation>
    </message>
    <message>
        <source>Move to Top Left Corner</source>
        <translation>Zur Ecke links oben</translation>
    </message>
    <message>
        <source>Move to Edge/Corner</source>
        <translation>Zu Rand/Ecke</translation>
    </message>
    <message>
        <source>Move to Display Above</source>
        <translation>Zum Bildschirm darüber</translation>
    </message>
    <message>
        <source>Move to Display on the Right</source>
        <translation>Zum Bildschirm rechts</translation>
    </message>
    <message>
        <source>Move to Display Below</source>
        <translation>Zum Bildschirm darunter</translation>
    </message>
    <message>
        <source>Move to Display on the Left</source>
        <translation>Zum Bildschirm links</translation>
    </message>
    <message>
        <source>Move to Other Display</source>
        <translation>Zum anderen Bildschirm</translation>
    </message>
    <message>
        <source>Center</source>
        <translation>Zur Mitte</translation>
    </message>
    <message>
        <source>%ld px</source>
        <translation>%ld px</translation>
    </message>
    <message>
        <source>Accelerate</source>
        <translation>Beschleunigen</translation>
    </message>
    <message>
        <source>Confine to Display</source>
        <translation>Auf Bildschirm begrenzen</translation>
    </message>
    <message>
        <source>Reposition</source>
        <translation>Proportional</translation>
    </message>
    <message>
        <source>Loop</source>
        <translation>Rundum</translation>
    </message>
    <message>
        <source>Move to Screen Section...</source>
        <translation>Zu Bildschirmbereich …</translation>
    </message>
    <message>
        <source>Click</source>
        <translation>Klicken</translation>
    </message>
    <message>
        <source>Right Click</source>
        <translation>Rechtsklick</translation>
    </message>
    <message>
        <source>Untitled</source>
        <translation>Ohne Titel</translation>
    </message>
</context>
</TS>
