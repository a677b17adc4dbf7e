<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en">
<context>
    <name>QVAboutDialog</name>
    <message>
        <source>About Corvane</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Corvane icon</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Corvane</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Version %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Drives the mouse pointer from the keyboard with hot keys of your own.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>corvane.org</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Corvane&apos;s web site</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>© 2026 The Corvane developers
Distributed under the MIT licence.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Buttons</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Close</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>QVActionsPreferencesPage</name>
    <message>
        <source>Actions</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Your custom controls will be listed here.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Custom controls list</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Custom controls</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>QVAppcast</name>
    <message>
        <source>The update feed is empty.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The update feed is damaged (line %1: %2).</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The update feed is not an appcast: it has no channel.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The update feed lists no versions.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>QVAppcastClient</name>
    <message>
        <source>The update feed %1 is not a secure (https) address, so it was not contacted.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The update feed is larger than %1 KiB; the check was stopped.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The update feed redirects too often; the check was stopped.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The update feed redirects to %1, which is not a secure (https) address; the check was stopped.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The update feed was not found on the server (HTTP %1).</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The update server answered with an error (HTTP %1).</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The update server could not be reached: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The update server did not answer in time; the check was stopped.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>QVContextMenuBuilder</name>
    <message>
        <source>About Corvane</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Check for Updates</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Help</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Enable Debug Logging</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Settings</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Quit</source>
        <translation type="unfinished"></translation>
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
    <name>QVGeneralPreferencesPage</name>
    <message>
        <source>Start at login</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show settings at launch</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>General</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show Corvane as</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Window in the task bar</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Icon in the system tray</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>In the background (no window, no icon)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Corvane has neither a window nor an icon, and your hot keys keep working. To reach these settings, launch Corvane again, for example from the application menu.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show Corvane as:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Start-up:</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>QVLoginItem</name>
    <message>
        <source>Drive the mouse pointer from the keyboard</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>QVMainController</name>
    <message>
        <source>Corvane Context Menu</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>QVPreferencesWindow</name>
    <message>
        <source>Corvane</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Corvane Settings</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Settings pages</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>General</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>General Settings</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Actions</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Updates</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Settings toolbar</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Space</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Help</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Toolbar style</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Icon and Text</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Icon Only</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Text Only</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>QVReleaseNotesBrowser</name>
    <message>
        <source>Release notes</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>QVStatusItem</name>
    <message>
        <source>Corvane Status Item</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Corvane</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>QVUpdateDialog</name>
    <message>
        <source>Software Update</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Update status</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Update details</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Checking progress</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Update actions</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>OK</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Skip This Version</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Remind Me Later</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Download Page</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Application icon</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Checking for updates…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 is up to date</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 %2 is the newest version available.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A new version of %1 is available!</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 %2 is now available—you have %3.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The update check failed</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>QVUpdateStatusText</name>
    <message>
        <source>%1 is up to date</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 %2 is now available</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>MMMM d, yyyy - h:mm AP</source>
        <extracomment>Date and time of the last update check, in QDateTime&apos;s format notation</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Last check: %1</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>QVUpdatesPage</name>
    <message>
        <source>Check for updates automatically</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Check Now</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Visit Product Page</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Updates</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Update status</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Last update check</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
