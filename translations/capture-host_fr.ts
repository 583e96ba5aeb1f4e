<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr_FR">
<context>
    <name>CommandLine</name>
    <message>
        <source>Take one capture at once and exit: 0 with a picture, 1 when cancelled, 2 for an error.</source>
        <translation>Faire tout de suite une capture et quitter : 0 avec une image, 1 si annulée, 2 en cas d’erreur.</translation>
    </message>
    <message>
        <source>With --once: write the picture to FILE (.png, .jpg, .jpeg or .bmp).</source>
        <translation>Avec --once : écrire l’image dans FILE (.png, .jpg, .jpeg ou .bmp).</translation>
    </message>
    <message>
        <source>With --once: put the picture on the clipboard and stay until another program takes the clipboard over.</source>
        <translation>Avec --once : mettre l’image dans le presse-papiers et rester jusqu’à ce qu’un autre programme le reprenne.</translation>
    </message>
    <message>
        <source>Wait that long before the capture.</source>
        <translation>Attendre ce temps avant la capture.</translation>
    </message>
    <message>
        <source>Keep the settings in DIR, which is created if missing.</source>
        <translation>Garder les réglages dans DIR, créé s’il n’existe pas.</translation>
    </message>
    <message>
        <source>Show this help.</source>
        <translation>Afficher cette aide.</translation>
    </message>
    <message>
        <source>Show the version.</source>
        <translation>Afficher la version.</translation>
    </message>
    <message>
        <source>Takes a screenshot of a region of the desktop. Without --once, opens a window.</source>
        <translation>Capture une région du bureau. Sans --once, ouvre une fenêtre.</translation>
    </message>
    <message>
        <source>unexpected argument &apos;%1&apos;</source>
        <translation>argument inattendu « %1 »</translation>
    </message>
    <message>
        <source>--output and --clipboard need --once</source>
        <translation>--output et --clipboard demandent --once</translation>
    </message>
    <message>
        <source>--output &apos;%1&apos;: the name must end with .png, .jpg, .jpeg or .bmp</source>
        <translation>--output « %1 » : le nom doit finir par .png, .jpg, .jpeg ou .bmp</translation>
    </message>
    <message>
        <source>--settings needs a directory</source>
        <translation>--settings demande un répertoire</translation>
    </message>
    <message>
        <source>--delay &apos;%1&apos;: not a number of seconds</source>
        <translation>--delay « %1 » : pas un nombre de secondes</translation>
    </message>
    <message>
        <source>there is no display to take a capture of</source>
        <translation>il n’y a pas d’écran à capturer</translation>
    </message>
    <message>
        <source>cannot create the settings directory &apos;%1&apos;</source>
        <translation>impossible de créer le répertoire des réglages « %1 »</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>Screenshot</source>
        <translation>Capture d’écran</translation>
    </message>
    <message>
        <source>New screenshot</source>
        <translation>Nouvelle capture</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Copier</translation>
    </message>
    <message>
        <source>Save as</source>
        <translation>Enregistrer sous</translation>
    </message>
    <message>
        <source>No screenshot yet</source>
        <translation>Pas encore de capture</translation>
    </message>
    <message>
        <source>%1 x %2 pixels</source>
        <translation>%1 x %2 pixels</translation>
    </message>
    <message>
        <source>Pictures (*.png *.jpg *.jpeg *.bmp)</source>
        <translation>Images (*.png *.jpg *.jpeg *.bmp)</translation>
    </message>
    <message>
        <source>Cannot write &apos;%1&apos;.</source>
        <translation>Impossible d’écrire « %1 ».</translation>
    </message>
</context>
<context>
    <name>OneCapture</name>
    <message>
        <source>not a regular file</source>
        <translation>pas un fichier ordinaire</translation>
    </message>
    <message>
        <source>capture-host: cannot write &apos;%1&apos;: %2</source>
        <translation>capture-host: impossible d’écrire « %1 » : %2</translation>
    </message>
</context>
</TS>
