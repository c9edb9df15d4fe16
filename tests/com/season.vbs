' A season played through the component by a script, which calls everything by name. It works on the league file beside the
' registered library, prints each pick that it stored as the row it expects, and ends with 0 only if all went as it should.
Option Explicit

Const Live = 1
Const SearchPlayersAndTeams = 1, SearchManagers = 2, SearchPrizes = 3
Const ManagerCount = 4, RoundCount = 3
Const ActionAdd = 1

Dim failures, checks
failures = 0
checks = 0

Sub Check(isTrue, what)
  checks = checks + 1
  If Not isTrue Then
    failures = failures + 1
    WScript.Echo "failed: " & what
  End If
End Sub

Sub CheckEqual(actual, expected, what)
  Check actual = expected, what & ": " & actual & " instead of " & expected
End Sub

' Ends an attempt that must fail with this number and a description that holds the text.
Sub CheckError(number, text, what)
  CheckEqual Err.Number, number, what & ", number"
  Check InStr(Err.Description, text) > 0, what & ", description: " & Err.Description
  Err.Clear
End Sub

Dim service, season, message, isDone
Set service = CreateObject("HLDataSrvc.DataService")

' Before a file is open.
isDone = service.Initialize(3, message)
Check Not isDone And InStr(message, "Blank") > 0, "a kind without a file is told: " & message
isDone = service.UpdateManager("", "Ann", 0, Nothing, message)
Check Not isDone, "a manager without a last name is refused"
CheckEqual message, "Last name is required.", "the reason"

message = ""
Check service.Initialize(Live, message), "Initialize: " & message

' A season, and who plays it. What is handed out through arguments arrives in the script's variables.
service.CurrentSeasonYear = 2031
Set season = service.GetCurrentSeasonInfo()
CheckEqual season.Year, 2031, "the season's year"
CheckEqual service.GetSettings().CurrentSeason, season.ID, "the settings follow"
season.NoOfManagers = ManagerCount
season.NoOfRounds = RoundCount
season.MoneyContribution = 50
season.NoOfRegularWeeks = 14
season.TotalNoOfWeeks = 17
Check service.SaveCurrentSeasonInfo(), "SaveCurrentSeasonInfo"

Set season = service.GetCurrentSeasonInfo()
Dim names, i, id, manager, found
' Scripts are read in the code page of the machine, so letters beyond ASCII are told by their numbers.
names = Array(Chr(197) & "ngstr" & Chr(246) & "m", "Br" & Chr(251) & "l" & Chr(233), "O'Marrick", "Lee")
For i = 0 To ManagerCount - 1
  id = 0
  Set manager = Nothing
  Check service.UpdateManager(names(i), "Script", id, manager, message), "UpdateManager " & names(i)
  Check id > 0, "the new manager's number arrives"
  CheckEqual manager.PickName, "Script " & names(i), "the new manager answers to what can be picked"
  CheckEqual manager.LastName, names(i), "and to what a manager is"
  Check season.AddManager(manager), "AddManager"
Next
CheckEqual season.Managers.Count, ManagerCount, "managers"
Set found = service.Search(SearchManagers, names(1), False, False)
CheckEqual found.Count, 1, "the search for a name"

Dim rank
rank = 0
For Each manager In season.Managers
  rank = rank + 1
  manager.Rank = rank
  manager.IsFeePaid = (rank > 1)
  CheckEqual manager.LastName, names(rank - 1), "For Each, item " & rank
Next
CheckEqual rank, ManagerCount, "items of For Each"
Check service.SaveManagersPlaying(), "SaveManagersPlaying"
Check service.DisableRanking(), "DisableRanking"
service.DiscardCurrentSeasonInfo
Set season = service.GetCurrentSeasonInfo()
Check season.IsRankingLocked = True, "the ranking is locked"
Check season.Managers.Item(1).IsFeePaid = False And season.Managers(2).IsFeePaid = True, "fees"

' The draft. In every even round the managers pick in reverse.
Dim picks, pickNo, round, place, pick, taken
Set picks = service.Search(SearchPlayersAndTeams, "A", False, True)
Check picks.Count >= ManagerCount * RoundCount, "there is enough to pick: " & picks.Count
For pickNo = 1 To ManagerCount * RoundCount
  round = (pickNo - 1) \ ManagerCount + 1
  place = (pickNo - 1) Mod ManagerCount + 1
  If round Mod 2 = 0 Then place = ManagerCount + 1 - place
  Set pick = picks.Item(pickNo)
  message = ""
  taken = season.IsPickableTaken(pick, message)
  Check Not taken And message = "", "pick " & pickNo & " is free"
  season.UpdateDraft pick, pickNo, season.Managers.Item(place)
Next
Set pick = picks.Item(2)
Check season.IsPickableTaken(pick, message), "what was picked is refused"
CheckEqual message, "1" & vbTab & names(1) & vbTab & pick.PickName, "who picked it"
Check season.Drafts.Item("P" & pick.PickID).PlayerOrTeam Is pick, "a pick answers with the very player"

' Taken back, and picked again by a team.
season.RemoveDraft 5
Check season.Drafts.Item("N5").Manager Is Nothing, "pick 5 is empty again"
Dim team
Set team = service.GetTeams().Item(1)
season.UpdateDraft team, 5, season.Managers.Item(ManagerCount)
CheckEqual season.Drafts(5).PlayerOrTeam.Nickname, team.Nickname, "a team was picked"
Check service.SaveDrafts(), "SaveDrafts"
Check service.DisableDrafting(), "DisableDrafting"

' Money.
Dim prize, winning
Set prize = service.GetPrizeTmpls().Item(1)
Check season.AddPrize(prize), "AddPrize"
season.Prizes.Item("K" & prize.ID).Amount = 200
Check service.SaveCurrentSeasonInfo(), "SaveCurrentSeasonInfo with a prize"
Set season = service.GetCurrentSeasonInfo()
CheckEqual season.Prizes.Item(1).Amount, 200, "the prize's amount"
Check service.AddWinning(winning), "AddWinning"
winning.ManagerID = CStr(season.Managers.Item(3).ID)
winning.PrizeID = CStr(prize.ID)
winning.Week = 4
winning.Action = ActionAdd
Check service.SaveWinnings(), "SaveWinnings"
Check winning.ID > 0, "the winning got a number"

' What goes wrong has a number and a text.
On Error Resume Next
Set manager = season.Managers.Item("K999999")
CheckError 5, "K999999", "an unknown key"
Set manager = season.Managers.Item(0)
CheckError 9, "Position 0", "a position outside"
season.Managers.Add season.Managers.Item(1), "K" & season.Managers.Item(1).ID
CheckError 457, "already holds", "a key twice"
season.UpdateDraft Nothing, 0, Nothing
CheckError 9, "Position 0", "a pick number outside the draft"
season.NoOfRounds = "many"
CheckError 13, "", "a text for a number"
season.RemoveDraft
Check Err.Number <> 0, "a missing argument"
Err.Clear
season.AddManager CreateObject("Scripting.Dictionary")
Check Err.Number <> 0, "a foreign object"
Err.Clear
season.NoSuchMember = 1
CheckError 438, "", "an unknown member"
On Error GoTo 0

' Closed and opened again; then the rows that the file must hold.
service.CloseDatabase
Check service.OpenDatabase(True, message), "OpenDatabase: " & message
service.DiscardCurrentSeasonInfo
Set season = service.GetCurrentSeasonInfo()
CheckEqual season.Drafts.Count, ManagerCount * RoundCount, "picks read again"
CheckEqual season.Winnings.Count, 1, "winnings read again"
Dim draft, row
For Each draft In season.Drafts
  Set pick = draft.PlayerOrTeam
  row = "row " & season.ID & "," & draft.DraftNo & "," & draft.Manager.ID & ","
  If pick.PickType = 1 Then row = row & pick.PickID & "," Else row = row & "," & pick.PickID
  WScript.Echo row
Next

Set service = Nothing
WScript.Echo checks & " checks, " & failures & " failed"
If failures > 0 Then WScript.Quit 1
