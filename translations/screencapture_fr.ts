<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr_FR">
<context>
    <name>PenWidthWidget</name>
    <message>
        <source>Pen width</source>
        <translation>Épaisseur du trait</translation>
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
</context>
</TS>
