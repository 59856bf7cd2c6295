' Selvane's slide show for ACP: the mount goes to each object of the list Selvane wrote
' (SelvaneSlideShow.sfl, seven lines an object) and ACP's voice tells about it.
' Selvane points the line that opens the list at its list each time it writes one.
Option Explicit

Const ForReading = 1
Const PauseMilliseconds = 15000

Sub Main()
    Dim FS, a, marker, position, objectName, located, constellation, magnitude, objectType
    Dim parts
    Set FS = CreateObject("Scripting.FileSystemObject")
    ' Selvane rewrites the next line, which must start at the line's first character.
Set a = FS.OpenTextFile("SelvaneSlideShow.sfl", ForReading, False)
    Do While Not a.AtEndOfStream
        marker = a.ReadLine
        If marker = "!START" Then
            position = a.ReadLine
            objectName = a.ReadLine
            located = a.ReadLine
            constellation = a.ReadLine
            magnitude = a.ReadLine
            objectType = a.ReadLine
            parts = Split(position, " ")
            Voice.Speak "Slewing to " & objectName & "."
            Telescope.SlewToCoordinates CDbl(parts(0)), CDbl(parts(1))
            Voice.Speak objectName & " is " & located & constellation & " " & magnitude
            Voice.Speak objectType
            Util.WaitForMilliseconds PauseMilliseconds
        End If
    Loop
    a.Close
    Voice.Speak "The slide show is complete."
End Sub
