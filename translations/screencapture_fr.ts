<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr_FR">
<context>
    <name>DesktopSource</name>
    <message>
        <source>The screens cannot be grabbed.</source>
        <translation>Impossible de capturer les écrans.</translation>
    </message>
    <message>
        <source>The picture is not that of the whole desktop.</source>
        <translation>L’image n’est pas celle de tout le bureau.</translation>
    </message>
</context>
<context>
    <name>PenWidthWidget</name>
    <message>
        <source>Pen width</source>
        <translation>Épaisseur du trait</translation>
    </message>
</context>
<context>
    <name>PortalScreenshot</name>
    <message>
        <source>There is no session bus.</source>
        <translation>Il n’y a pas de bus de session.</translation>
    </message>
    <message>
        <source>The desktop&apos;s portal takes no screenshots: %1</source>
        <translation>Le portail du bureau ne fait pas de captures d’écran : %1</translation>
    </message>
    <message>
        <source>The screenshot was not permitted.</source>
        <translation>La capture d’écran n’a pas été autorisée.</translation>
    </message>
    <message>
        <source>The desktop&apos;s portal could not take the screenshot.</source>
        <translation>Le portail du bureau n’a pas pu faire la capture d’écran.</translation>
    </message>
    <message>
        <source>The desktop&apos;s portal gave no picture.</source>
        <translation>Le portail du bureau n’a pas donné d’image.</translation>
    </message>
    <message>
        <source>The desktop&apos;s portal has gone away.</source>
        <translation>Le portail du bureau n’est plus là.</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Courier New</source>
        <translation>Courier New</translation>
    </message>
</context>
<context>
    <name>ScreenCaptureWnd</name>
    <message>
        <source>PNG (*.png)</source>
        <translation>PNG (*.png)</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>Enregistrer sous</translation>
    </message>
    <message>
        <source>PNG (*.png);;JPEG (*.jpg;*.jpeg);;BMP (*.bmp)</source>
        <translation>PNG (*.png);;JPEG (*.jpg;*.jpeg);;BMP (*.bmp)</translation>
    </message>
    <message>
        <source>scribble</source>
        <translation>dessin à main levée</translation>
    </message>
    <message>
        <source>text</source>
        <translation>texte</translation>
    </message>
    <message>
        <source>Arrow</source>
        <translation>Flèche</translation>
    </message>
    <message>
        <source>Rectangle</source>
        <translation>Rectangle</translation>
    </message>
    <message>
        <source>Ellipse</source>
        <translation>Ellipse</translation>
    </message>
    <message>
        <source>Mosaic</source>
        <translation>Mosaïque</translation>
    </message>
    <message>
        <source>undo</source>
        <translation>annuler</translation>
    </message>
    <message>
        <source>redo</source>
        <translation>rétablir</translation>
    </message>
    <message>
        <source>save</source>
        <translation>enregistrer</translation>
    </message>
    <message>
        <source>close</source>
        <translation>fermer</translation>
    </message>
    <message>
        <source>done</source>
        <translation>fini</translation>
    </message>
    <message>
        <source>Color</source>
        <translation>Couleur</translation>
    </message>
    <message>
        <source>Font size</source>
        <translation>Taille de police</translation>
    </message>
    <message>
        <source>Blur</source>
        <translation>Flou</translation>
    </message>
    <message>
        <source>There is no picture.</source>
        <translation>Il n’y a pas d’image.</translation>
    </message>
    <message>
        <source>The screens have changed.</source>
        <translation>Les écrans ont changé.</translation>
    </message>
</context>
</TS>
