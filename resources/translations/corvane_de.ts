<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en">
<context>
    <name>QVAboutDialog</name>
    <message>
        <source>About Corvane</source>
        <translation>Über Corvane</translation>
    </message>
    <message>
        <source>Corvane icon</source>
        <translation>Corvane-Symbol</translation>
    </message>
    <message>
        <source>Corvane</source>
        <translation>Corvane</translation>
    </message>
    <message>
        <source>Version %1</source>
        <translation>Version %1</translation>
    </message>
    <message>
        <source>Drives the mouse pointer from the keyboard with hot keys of your own.</source>
        <translation>Steuert den Mauszeiger über die Tastatur, mit Ihren eigenen Tastenkürzeln.</translation>
    </message>
    <message>
        <source>corvane.org</source>
        <translation>corvane.org</translation>
    </message>
    <message>
        <source>Corvane&apos;s web site</source>
        <translation>Website von Corvane</translation>
    </message>
    <message>
        <source>© 2026 The Corvane developers
Distributed under the MIT licence.</source>
        <translation>© 2026 Die Corvane-Entwickler
Verbreitet unter der MIT-Lizenz.</translation>
    </message>
    <message>
        <source>Buttons</source>
        <translation>Schaltflächen</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
</context>
<context>
    <name>QVActionsPreferencesPage</name>
    <message>
        <source>Actions</source>
        <translation>Aktionen</translation>
    </message>
    <message>
        <source>Custom controls list</source>
        <translation>Liste der Aktionen</translation>
    </message>
    <message>
        <source>Scroll custom controls</source>
        <translation>Aktionen rollen</translation>
    </message>
    <message>
        <source>Custom controls editor</source>
        <translation>Bearbeitung der Aktionen</translation>
    </message>
    <message>
        <source>Separator</source>
        <translation>Trennlinie</translation>
    </message>
    <message>
        <source>Custom controls buttons</source>
        <translation>Knöpfe der Aktionen</translation>
    </message>
    <message>
        <source>Add Control</source>
        <translation>Aktion hinzufügen</translation>
    </message>
    <message>
        <source>Add a control below the selection</source>
        <translation>Eine Aktion unter der Auswahl hinzufügen</translation>
    </message>
    <message>
        <source>Delete Selected Controls</source>
        <translation>Ausgewählte Aktionen löschen</translation>
    </message>
    <message>
        <source>Delete the selected controls</source>
        <translation>Die ausgewählten Aktionen löschen</translation>
    </message>
    <message>
        <source>Editor message</source>
        <translation>Meldung der Bearbeitung</translation>
    </message>
</context>
<context>
    <name>QVAppcast</name>
    <message>
        <source>The update feed is empty.</source>
        <translation>Der Aktualisierungs-Feed ist leer.</translation>
    </message>
    <message>
        <source>The update feed is damaged (line %1: %2).</source>
        <translation>Der Aktualisierungs-Feed ist beschädigt (Zeile %1: %2).</translation>
    </message>
    <message>
        <source>The update feed is not an appcast: it has no channel.</source>
        <translation>Der Aktualisierungs-Feed ist kein Appcast: Er enthält keinen Kanal.</translation>
    </message>
    <message>
        <source>The update feed lists no versions.</source>
        <translation>Der Aktualisierungs-Feed nennt keine Versionen.</translation>
    </message>
</context>
<context>
    <name>QVAppcastClient</name>
    <message>
        <source>The update feed %1 is not a secure (https) address, so it was not contacted.</source>
        <translation>Der Aktualisierungs-Feed %1 ist keine sichere (https-)Adresse und wurde daher nicht abgerufen.</translation>
    </message>
    <message>
        <source>The update feed is larger than %1 KiB; the check was stopped.</source>
        <translation>Der Aktualisierungs-Feed ist größer als %1 KiB; die Suche wurde abgebrochen.</translation>
    </message>
    <message>
        <source>The update feed redirects too often; the check was stopped.</source>
        <translation>Der Aktualisierungs-Feed leitet zu oft weiter; die Suche wurde abgebrochen.</translation>
    </message>
    <message>
        <source>The update feed redirects to %1, which is not a secure (https) address; the check was stopped.</source>
        <translation>Der Aktualisierungs-Feed leitet zu %1 weiter, keiner sicheren (https-)Adresse; die Suche wurde abgebrochen.</translation>
    </message>
    <message>
        <source>The update feed was not found on the server (HTTP %1).</source>
        <translation>Der Aktualisierungs-Feed wurde auf dem Server nicht gefunden (HTTP %1).</translation>
    </message>
    <message>
        <source>The update server answered with an error (HTTP %1).</source>
        <translation>Der Aktualisierungsserver antwortete mit einem Fehler (HTTP %1).</translation>
    </message>
    <message>
        <source>The update server could not be reached: %1</source>
        <translation>Der Aktualisierungsserver ist nicht erreichbar: %1</translation>
    </message>
    <message>
        <source>The update server did not answer in time; the check was stopped.</source>
        <translation>Der Aktualisierungsserver antwortete nicht rechtzeitig; die Suche wurde abgebrochen.</translation>
    </message>
</context>
<context>
    <name>QVContextMenuBuilder</name>
    <message>
        <source>About Corvane</source>
        <translation>Über Corvane</translation>
    </message>
    <message>
        <source>Check for Updates</source>
        <translation>Nach Aktualisierungen suchen</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Hilfe</translation>
    </message>
    <message>
        <source>Enable Debug Logging</source>
        <translation>Fehlerprotokoll einschalten</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Beenden</translation>
    </message>
</context>
<context>
    <name>QVCustomControlCollectionView</name>
    <message>
        <source>Custom controls</source>
        <translation>Aktionen</translation>
    </message>
</context>
<context>
    <name>QVCustomControlConfigurationView</name>
    <message>
        <source>Action of %1</source>
        <translation>Aktion von %1</translation>
    </message>
    <message>
        <source>Hot key of %1</source>
        <translation>Tastenkürzel von %1</translation>
    </message>
    <message>
        <source>Clear hot key of %1</source>
        <translation>Tastenkürzel von %1 löschen</translation>
    </message>
    <message>
        <source>Details of %1</source>
        <translation>Details von %1</translation>
    </message>
    <message>
        <source>Step of %1</source>
        <translation>Schrittweite von %1</translation>
    </message>
    <message>
        <source>Direction of %1</source>
        <translation>Richtung von %1</translation>
    </message>
    <message>
        <source>Position of %1</source>
        <translation>Position von %1</translation>
    </message>
    <message>
        <source>Display of %1</source>
        <translation>Bildschirm von %1</translation>
    </message>
    <message>
        <source>%1 (%2)</source>
        <translation>%1 (%2)</translation>
    </message>
    <message>
        <source>Title of the heading</source>
        <translation>Titel der Überschrift</translation>
    </message>
    <message>
        <source>Command for %1</source>
        <translation>Befehl für %1</translation>
    </message>
</context>
<context>
    <name>QVCustomControlDirectionSelectorView</name>
    <message>
        <source>Direction</source>
        <translation>Richtung</translation>
    </message>
    <message>
        <source>Edge or corner</source>
        <translation>Rand oder Ecke</translation>
    </message>
    <message>
        <source>Side of the other display</source>
        <translation>Seite des anderen Bildschirms</translation>
    </message>
    <message>
        <source>Direction: Up</source>
        <translation>Richtung: Nach oben</translation>
    </message>
    <message>
        <source>Direction: Up &amp; Right</source>
        <translation>Richtung: Nach oben rechts</translation>
    </message>
    <message>
        <source>Direction: Right</source>
        <translation>Richtung: Nach rechts</translation>
    </message>
    <message>
        <source>Direction: Down &amp; Right</source>
        <translation>Richtung: Nach unten rechts</translation>
    </message>
    <message>
        <source>Direction: Down</source>
        <translation>Richtung: Nach unten</translation>
    </message>
    <message>
        <source>Direction: Down &amp; Left</source>
        <translation>Richtung: Nach unten links</translation>
    </message>
    <message>
        <source>Direction: Left</source>
        <translation>Richtung: Nach links</translation>
    </message>
    <message>
        <source>Direction: Up &amp; Left</source>
        <translation>Richtung: Nach oben links</translation>
    </message>
    <message>
        <source>Position: Top Edge</source>
        <translation>Position: Oberer Rand</translation>
    </message>
    <message>
        <source>Position: Top Right Corner</source>
        <translation>Position: Ecke oben rechts</translation>
    </message>
    <message>
        <source>Position: Right Edge</source>
        <translation>Position: Rechter Rand</translation>
    </message>
    <message>
        <source>Position: Bottom Right Corner</source>
        <translation>Position: Ecke unten rechts</translation>
    </message>
    <message>
        <source>Position: Bottom Edge</source>
        <translation>Position: Unterer Rand</translation>
    </message>
    <message>
        <source>Position: Bottom Left Corner</source>
        <translation>Position: Ecke unten links</translation>
    </message>
    <message>
        <source>Position: Left Edge</source>
        <translation>Position: Linker Rand</translation>
    </message>
    <message>
        <source>Position: Top Left Corner</source>
        <translation>Position: Ecke oben links</translation>
    </message>
    <message>
        <source>Position: Center</source>
        <translation>Position: Mitte</translation>
    </message>
    <message>
        <source>Display: Above</source>
        <translation>Bildschirm: Darüber</translation>
    </message>
    <message>
        <source>Display: on the Right</source>
        <translation>Bildschirm: Rechts</translation>
    </message>
    <message>
        <source>Display: Below</source>
        <translation>Bildschirm: Darunter</translation>
    </message>
    <message>
        <source>Display: on the Left</source>
        <translation>Bildschirm: Links</translation>
    </message>
</context>
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
<context>
    <name>QVCustomControlRowControls</name>
    <message>
        <source>Show Details</source>
        <translation>Details zeigen</translation>
    </message>
    <message>
        <source>Move settings</source>
        <translation>Einstellungen der Bewegung</translation>
    </message>
    <message>
        <source>Step:</source>
        <translation>Schritt:</translation>
    </message>
    <message>
        <source>Other display settings</source>
        <translation>Einstellungen für den anderen Bildschirm</translation>
    </message>
    <message>
        <source>Reposition Proportionally</source>
        <translation>Proportional versetzen</translation>
    </message>
    <message>
        <source>Loop Through Displays</source>
        <translation>Bildschirme reihum durchlaufen</translation>
    </message>
    <message>
        <source>Heading settings</source>
        <translation>Einstellungen der Überschrift</translation>
    </message>
    <message>
        <source>Title:</source>
        <translation>Titel:</translation>
    </message>
    <message>
        <source>Move to Center</source>
        <translation>In die Mitte bewegen</translation>
    </message>
    <message>
        <source>Heading</source>
        <translation>Überschrift</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Keine</translation>
    </message>
    <message>
        <source>This desktop binds keys itself: bind this command to a key in its settings. A Move repeats until the same command with --perform-release.</source>
        <translation>Diese Arbeitsumgebung vergibt Tasten selbst: Binden Sie diesen Befehl in ihren Einstellungen an eine Taste. Eine Bewegung wiederholt sich bis zum selben Befehl mit --perform-release.</translation>
    </message>
</context>
<context>
    <name>QVGeneralPreferencesPage</name>
    <message>
        <source>Start at login</source>
        <translation>Beim Anmelden starten</translation>
    </message>
    <message>
        <source>Show settings at launch</source>
        <translation>Einstellungen beim Start zeigen</translation>
    </message>
    <message>
        <source>General</source>
        <translation>Allgemein</translation>
    </message>
    <message>
        <source>Show Corvane as</source>
        <translation>Corvane zeigen als</translation>
    </message>
    <message>
        <source>Window in the task bar</source>
        <translation>Fenster in der Taskleiste</translation>
    </message>
    <message>
        <source>Icon in the system tray</source>
        <translation>Symbol im Systembereich</translation>
    </message>
    <message>
        <source>In the background (no window, no icon)</source>
        <translation>Im Hintergrund (ohne Fenster und Symbol)</translation>
    </message>
    <message>
        <source>Corvane has neither a window nor an icon, and your hot keys keep working. To reach these settings, launch Corvane again, for example from the application menu.</source>
        <translation>Corvane hat weder ein Fenster noch ein Symbol, und Ihre Tastenkürzel wirken weiter. Um diese Einstellungen zu erreichen, starten Sie Corvane noch einmal, etwa aus dem Anwendungsmenü.</translation>
    </message>
    <message>
        <source>Show Corvane as:</source>
        <translation>Corvane zeigen als:</translation>
    </message>
    <message>
        <source>Start-up:</source>
        <translation>Start:</translation>
    </message>
</context>
<context>
    <name>QVHotKeyClearButton</name>
    <message>
        <source>Clear hot key</source>
        <translation>Tastenkürzel löschen</translation>
    </message>
</context>
<context>
    <name>QVHotKeyTextView</name>
    <message>
        <source>Hot key</source>
        <translation>Tastenkürzel</translation>
    </message>
    <message>
        <source>Use “%1”?</source>
        <translation>„%1“ verwenden?</translation>
    </message>
    <message>
        <source>Some applications might not respond properly to your input with the key combination “%1” being reserved as a hot key.</source>
        <translation>Manche Programme reagieren möglicherweise nicht richtig auf Ihre Eingaben, wenn die Tastenkombination „%1“ als Tastenkürzel reserviert ist.</translation>
    </message>
    <message>
        <source>Use “%1”</source>
        <translation>„%1“ verwenden</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>“%1” is held by another program.</source>
        <translation>„%1“ ist von einem anderen Programm belegt.</translation>
    </message>
    <message>
        <source>“%1” is used by “%2”.</source>
        <translation>„%1“ wird von „%2“ verwendet.</translation>
    </message>
    <message>
        <source>No Shortcut</source>
        <translation>Kein Tastenkürzel</translation>
    </message>
</context>
<context>
    <name>QVLoginItem</name>
    <message>
        <source>Drive the mouse pointer from the keyboard</source>
        <translation>Den Mauszeiger mit der Tastatur steuern</translation>
    </message>
</context>
<context>
    <name>QVPreferencesWindow</name>
    <message>
        <source>Corvane</source>
        <translation>Corvane</translation>
    </message>
    <message>
        <source>Corvane Settings</source>
        <translation>Corvane-Einstellungen</translation>
    </message>
    <message>
        <source>Settings pages</source>
        <translation>Einstellungsseiten</translation>
    </message>
    <message>
        <source>General</source>
        <translation>Allgemein</translation>
    </message>
    <message>
        <source>General Settings</source>
        <translation>Allgemeine Einstellungen</translation>
    </message>
    <message>
        <source>Actions</source>
        <translation>Aktionen</translation>
    </message>
    <message>
        <source>Updates</source>
        <translation>Aktualisierungen</translation>
    </message>
    <message>
        <source>Settings toolbar</source>
        <translation>Werkzeugleiste der Einstellungen</translation>
    </message>
    <message>
        <source>Space</source>
        <translation>Zwischenraum</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Hilfe</translation>
    </message>
    <message>
        <source>Toolbar style</source>
        <translation>Stil der Werkzeugleiste</translation>
    </message>
    <message>
        <source>Icon and Text</source>
        <translation>Symbol und Text</translation>
    </message>
    <message>
        <source>Icon Only</source>
        <translation>Nur Symbol</translation>
    </message>
    <message>
        <source>Text Only</source>
        <translation>Nur Text</translation>
    </message>
</context>
<context>
    <name>QVReleaseNotesBrowser</name>
    <message>
        <source>Release notes</source>
        <translation>Versionshinweise</translation>
    </message>
</context>
<context>
    <name>QVStatusItem</name>
    <message>
        <source>Corvane Status Item</source>
        <translation>Corvane-Statussymbol</translation>
    </message>
    <message>
        <source>Corvane</source>
        <translation>Corvane</translation>
    </message>
</context>
<context>
    <name>QVUpdateDialog</name>
    <message>
        <source>Software Update</source>
        <translation>Softwareaktualisierung</translation>
    </message>
    <message>
        <source>Update status</source>
        <translation>Status der Aktualisierung</translation>
    </message>
    <message>
        <source>Update details</source>
        <translation>Details der Aktualisierung</translation>
    </message>
    <message>
        <source>Checking progress</source>
        <translation>Fortschritt der Suche</translation>
    </message>
    <message>
        <source>Update actions</source>
        <translation>Schaltflächen zur Aktualisierung</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Skip This Version</source>
        <translation>Diese Version überspringen</translation>
    </message>
    <message>
        <source>Remind Me Later</source>
        <translation>Später erinnern</translation>
    </message>
    <message>
        <source>Download Page</source>
        <translation>Download-Seite</translation>
    </message>
    <message>
        <source>Application icon</source>
        <translation>Programmsymbol</translation>
    </message>
    <message>
        <source>Checking for updates…</source>
        <translation>Suche nach Aktualisierungen …</translation>
    </message>
    <message>
        <source>%1 is up to date</source>
        <translation>%1 ist aktuell</translation>
    </message>
    <message>
        <source>%1 %2 is the newest version available.</source>
        <translation>%1 %2 ist die neueste verfügbare Version.</translation>
    </message>
    <message>
        <source>A new version of %1 is available!</source>
        <translation>Eine neue Version von %1 ist verfügbar!</translation>
    </message>
    <message>
        <source>%1 %2 is now available—you have %3.</source>
        <translation>%1 %2 ist jetzt verfügbar — Sie haben %3.</translation>
    </message>
    <message>
        <source>The update check failed</source>
        <translation>Die Suche nach Aktualisierungen ist fehlgeschlagen</translation>
    </message>
</context>
<context>
    <name>QVUpdateStatusText</name>
    <message>
        <source>%1 is up to date</source>
        <translation>%1 ist aktuell</translation>
    </message>
    <message>
        <source>%1 %2 is now available</source>
        <translation>%1 %2 ist jetzt verfügbar</translation>
    </message>
    <message>
        <source>MMMM d, yyyy - h:mm AP</source>
        <extracomment>Date and time of the last update check, in QDateTime&apos;s format notation</extracomment>
        <translation>d. MMMM yyyy, HH:mm</translation>
    </message>
    <message>
        <source>Last check: %1</source>
        <translation>Letzte Suche: %1</translation>
    </message>
</context>
<context>
    <name>QVUpdatesPage</name>
    <message>
        <source>Check for updates automatically</source>
        <translation>Automatisch nach Aktualisierungen suchen</translation>
    </message>
    <message>
        <source>Check Now</source>
        <translation>Jetzt suchen</translation>
    </message>
    <message>
        <source>Visit Product Page</source>
        <translation>Produktseite besuchen</translation>
    </message>
    <message>
        <source>Updates</source>
        <translation>Aktualisierungen</translation>
    </message>
    <message>
        <source>Update status</source>
        <translation>Status der Aktualisierung</translation>
    </message>
    <message>
        <source>Last update check</source>
        <translation>Letzte Suche nach Aktualisierungen</translation>
    </message>
</context>
</TS>
