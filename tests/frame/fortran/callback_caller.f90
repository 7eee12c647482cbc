! A Fortran caller passing a user function (64-bit default integers and logicals): the library calls it
! through its adapter with every argument by address, IUSER and RUSER untouched. Stops non-zero on a mismatch.
program callback_caller
  implicit none
  integer :: irank(5), iuser(1), ifail
  double precision :: ruser(5)
  logical, external :: later_first

  ruser = [3.0d0, 1.0d0, 4.0d0, 1.0d0, 5.0d0]
  iuser(1) = 0
  ifail = 0
  call m01dzf(later_first, 1, 5, irank, iuser, ruser, ifail)
  if (ifail /= 0 .or. any(irank /= [3, 4, 2, 5, 1]) .or. iuser(1) <= 0) then
    print '(a, 5i3, a, i0)', 'FAILED: ranks', irank, ', calls ', iuser(1)
    error stop 1
  end if
  print '(a)', '1 passed, 0 failed'
end program callback_caller

! Item I comes before item J when its value is larger; counts the calls in IUSER(1).
logical function later_first(i, j, iuser, ruser)
  implicit none
  integer, intent(in) :: i, j
  integer, intent(inout) :: iuser(*)
  double precision, intent(inout) :: ruser(*)
  iuser(1) = iuser(1) + 1
  later_first = ruser(i) > ruser(j)
end function later_first
